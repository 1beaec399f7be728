#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace CLI {
class App;
}

namespace Brenta::OS::VIG::Tool {

// The next three say what the command line is, as its parser knows it: the manual page and the shell completions are
// made of this, so that they never differ from --help.

struct OptionHelp {
    std::vector<std::string> names;  // "-h", "--help"; of a positional argument its one name: "RULES"
    bool isPositional;
    bool isRequired;
    bool isRepeated;       // may be given several times
    std::string argument;  // "FILE", "text|jsonl", in brackets if it may be left out; empty for a flag and a positional
    std::string description;
};

struct VerbHelp {
    std::string name;
    std::string description;
    std::vector<OptionHelp> options;
    std::string footer;  // lines that keep their form
};

struct ProgramHelp {
    std::string version;
    VerbHelp general;  // the program as a whole, with its own options
    std::vector<VerbHelp> verbs;
};

// Says what a verb takes. Each value must outlive the command line; one that is not given is left unchanged.
class Verb {
  public:
    enum class Need { Required, Optional };

    explicit Verb(CLI::App& parser) : app(parser) {}

    // They take words without an option: one, or as many as there are.
    void argument(const std::string& name, std::string& value, Need need, const std::string& description);
    void argument(const std::string& name, std::vector<std::string>& values, Need need, const std::string& description);

    void flag(const std::string& name, bool& value, const std::string& description);

    // Takes the name alone, or with a word, "--name=word": `read` is given whether it has the word.
    void flagOrWord(const std::string& name, const std::string& word, const std::string& description,
                    const std::function<void(bool withWord)>& read);

    // `kind` is how the help calls what has to be given.
    void text(const std::string& name, std::string& value, const std::string& kind, const std::string& description);

    // Refuses an empty name, which is a variable of a script that has no value rather than an option that was not
    // given.
    void name(const std::string& name, std::string& value, const std::string& kind, const std::string& description);

    // It may be repeated. Each name is one of `known`, and `what` is how a message calls one of them.
    void names(const std::string& name, std::vector<std::string>& values, std::vector<std::string_view> known,
               const std::string& what, const std::string& description);

    void wholeNumber(const std::string& names, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                     const std::string& description);

    // Takes "500ms", "1s", "2m", "1h" or a number of seconds, which may have a fraction; of a year at most.
    void duration(const std::string& name, std::chrono::milliseconds& value, std::chrono::milliseconds least,
                  const std::string& description);

    // Takes one of a few words; the help says that the first one is the default.
    template <typename Value>
    void choice(const std::string& name, Value& value,
                const std::vector<std::pair<std::string, std::type_identity_t<Value>>>& choices,
                const std::string& description) {
        std::string words;
        for (const auto& [word, meaning] : choices) {
            words += (words.empty() ? "" : "|") + word;
        }
        option(name, words, description + " (default: " + choices[0].first + ")", [=, &value](const std::string& text) {
            for (const auto& [word, meaning] : choices) {
                if (word == text) {
                    value = meaning;
                    return std::string();
                }
            }
            return "expected " + words + ", got " + text;
        });
    }

    // Takes any other option: `read` returns what is wrong with a text, or nothing.
    void option(const std::string& name, const std::string& kind, const std::string& description,
                const std::function<std::string(const std::string& text)>& read);

    // Does the same for an option that may stand without a text, which is then empty. It is to stand behind all
    // arguments, or to be written "--name=TEXT", for it takes the next word.
    void optionalText(const std::string& name, const std::string& kind, const std::string& description,
                      const std::function<std::string(const std::string& text)>& read);

    // Does the same for an option that may be repeated: `read` is given each text, in order.
    void repeated(const std::string& name, const std::string& kind, const std::string& description,
                  const std::function<std::string(const std::string& text)>& read);

    // Refuses two of the options together.
    void refuseTogether(const std::string& name, const std::string& other);

  private:
    CLI::App& app;
};

// It has the arguments of the program, the verb that they name, and its help.
class CommandLine {
  public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine();

    // The lines of `footer` keep their form. `run` does what the verb is for and returns the exit status.
    template <typename Options>
    Verb addVerb(const std::string& name, const std::string& description, const std::string& footer,
                 int (*run)(const Options&, const Console&, const Interruption&), const Options& options) {
        return addVerb(name, description, footer,
                       [run, &options](const Console& console, const Interruption& interruption) {
                           return run(options, console, interruption);
                       });
    }

    // Reads the arguments, of which the first one is the program's name. If there is nothing to run, for they are wrong
    // or ask for help, says so and returns the exit status.
    std::optional<int> parse(int count, const char* const* arguments, const Console& console);

    // Runs the verb that was named. REQUIRES: parse() has returned nothing.
    int run(const Console& console, const Interruption& interruption) const;

    // Returns what the manual page and the completions are made of.
    ProgramHelp help() const;

  private:
    using Run = std::function<int(const Console&, const Interruption&)>;

    Verb addVerb(const std::string& name, const std::string& description, const std::string& footer, Run run);

    int refuseVerb(std::string_view given, const Console& console) const;

    const std::unique_ptr<CLI::App> app;
    std::vector<std::pair<CLI::App*, Run>> verbs;
};

// Returns the time that "500ms", "1s", "2m", "1h" or a number of seconds says, which may have a fraction; nothing if it
// says none, or more than a year.
std::optional<std::chrono::milliseconds> durationOf(std::string_view text);

// Says what is wrong with the arguments of the verb, and where its help is. Returns the exit status.
int refuseArguments(const Console& console, std::string_view what, const std::string& verb);

}  // namespace Brenta::OS::VIG::Tool
