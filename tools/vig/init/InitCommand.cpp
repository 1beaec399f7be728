#include "tools/vig/init/InitCommand.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/init/Sketch.h"
#include "tools/vig/init/SketchText.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kSuffix = ".json";
constexpr std::string_view kSuffixOfTests = ".test.json";

// It asks for one part of a sketch, and is the option of that name.
struct Question {
    const char* option;
    const char* kind;         // of its argument
    const char* description;  // of the option
    const char* text;
    const char* none;  // the answer that there is no such part; null if it must be there
    std::string (*read)(const std::string& text, Sketch& sketch);
};

constexpr Question kQuestions[] = {
    {"--attribute", "NAME", "The attribute of events to watch, such as vmRssKB", "Which attribute is to be watched?",
     nullptr, readAttribute},
    {"--process", "NAME", "The process whose events count", "Of which process, by its name in events?", nullptr,
     readProcess},
    {"--limit", "NUMBER", "Above it the attribute is too large; with a unit if you like, such as 200MB",
     "Above which limit is it too large?", nullptr, readLimit},
    {"--times", "N", "How often in a row it is above the limit before there is an action (default: 1)",
     "How often in a row must it be above the limit?", nullptr, readTimes},
    {"--release", "NUMBER", "At or below it all begins anew (default: none, so that nothing ever does)",
     "At or below which release limit does all begin anew?", "none", readRelease},
    {"--second-limit", "NUMBER", "A higher limit, for one more action (default: none)",
     "Above which second limit is there one more action?", "none", readSecond},
    {"--share", "SHARE", "The share of the devices on which there is anything, such as 0.1 or 10% (default: all)",
     "On which share of the devices?", "all", readShare},
    {"--trigger", "ACTION", "The action (default: the one that starts a collection for such events)", "Which action?",
     nullptr, readAction},
};
static_assert(std::size(kQuestions) == InitOptions::kQuestions);

// Reads lines that a person types.
class Answers {
  public:
    Answers(int from, const Interruption& stop) : input(from), interruption(stop) {}

    // Returns the next line without the blanks around it, or nothing at the end of the input or once interrupted.
    std::optional<std::string> next() {
        std::string line;
        while (!interruption.requested()) {
            pollfd sources[] = {{input, POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
            if (poll(sources, 2, -1) < 0 || sources[0].revents == 0) {
                continue;
            }
            char byte = 0;
            const ssize_t got = read(input, &byte, 1);
            if (got < 0 && (errno == EINTR || errno == EAGAIN)) {
                continue;
            }
            if (got <= 0) {
                return std::nullopt;
            }
            if (byte == '\n') {
                const std::size_t begin = std::min(line.find_first_not_of(" \t\r"), line.size());
                return line.substr(begin, line.find_last_not_of(" \t\r") + 1 - begin);
            }
            line += byte;
        }
        return std::nullopt;
    }

  private:
    const int input;
    const Interruption& interruption;
};

std::string testsBeside(const std::string& rules) {
    const std::string name = rules.ends_with(kSuffix) ? rules.substr(0, rules.size() - kSuffix.size()) : rules;
    return name + std::string(kSuffixOfTests);
}

// Returns what `vig check --strict` would say of the document, as far as it is known: nothing is written that it
// refuses.
std::string whyNotClean(Sketch sketch) {
    if (sketch.attribute.empty() || isOfProcess(sketch) == sketch.process.empty()) {
        return {};
    }
    if (sketch.action.empty()) {
        sketch.action = actionsFor(sketch).front();
    }
    const DocumentText document("", documentOf(sketch));
    const Findings findings = findingsIn(document, libraryRegistry(), Catalogue::builtIn());
    if (findings.all.empty()) {
        return {};
    }
    const Finding& first = findings.all.front();
    return first.message + (first.hint.empty() ? "" : "; " + first.hint);
}

// Returns a path as people type it in a shell.
std::string shellWord(const std::string& path) {
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,:@%=";
    std::string word = path.starts_with('-') ? "./" : "";
    for (const char each : path) {
        word += each == '\'' ? std::string("'\\''") : std::string(1, each);
    }
    return printable(word.find_first_not_of(kPlain) == std::string::npos ? word : "'" + word + "'");
}

class Init {
  public:
    Init(const InitOptions& options, const Console& console, const Interruption& interruption)
        : options(options),
          console(console),
          interruption(interruption),
          rules(options.rules),
          answers(console.in, interruption),
          prompts(console.err) {}

    int run() {
        readOptions();
        const bool asks = !missing.empty() && isatty(console.in) == 1;
        if (rules.empty() && !asks) {
            rules = kDefaultRules;
        }
        const std::string problem = rules.empty() ? std::string() : whyNotWritten(rules);
        if (!problem.empty()) {
            problems.push_back(problem);
        }
        if (!problems.empty() || (!missing.empty() && !asks)) {
            return refuse();
        }
        return !asks || ask() ? write() : abandon();
    }

  private:
    static constexpr const char* kDefaultRules = "rules.json";

    bool isOfLimit(const Question& question) const {
        return question.read == readRelease || question.read == readSecond;
    }

    // Returns false if what the answer rests on is not known.
    bool canRead(const Question& question) const {
        return question.read == readAttribute || question.read == readTimes || question.read == readShare ||
               (!sketch.attribute.empty() && (hasLimit || !isOfLimit(question)));
    }

    bool applies(const Question& question) const {
        return question.read != readProcess || sketch.attribute.empty() || isOfProcess(sketch);
    }

    // Returns the answer that is taken if there is none; nothing if there must be one.
    std::optional<std::string> defaultOf(const Question& question) const {
        if (question.none != nullptr) {
            return question.none;
        }
        if (question.read == readTimes) {
            return "1";
        }
        if (question.read == readAction) {
            const bool isKnown = !sketch.attribute.empty();
            const std::string_view first = isKnown ? actionsFor(sketch).front() : "";
            return !isKnown || startsCollection(first) ? std::optional(std::string(first)) : std::nullopt;
        }
        return std::nullopt;
    }

    // Returns what is wrong with the answer. Nothing stays of one that is wrong, since the next may be that there is no
    // such part.
    std::string take(const Question& question, const std::string& answer) {
        if (question.none != nullptr && answer == question.none) {
            return {};
        }
        Sketch tried = sketch;
        std::string problem = question.read(answer, tried);
        if (problem.empty()) {
            problem = whyNotClean(tried);
        }
        if (problem.empty()) {
            sketch = std::move(tried);
            hasLimit = hasLimit || question.read == readLimit;
        }
        return problem;
    }

    // Reads what the options say, and the defaults of the others.
    void readOptions() {
        for (std::size_t index = 0; index < std::size(kQuestions); ++index) {
            const Question& question = kQuestions[index];
            const auto& given = options.answers[index];
            const auto answer = given ? given : defaultOf(question);
            if (!applies(question)) {
                if (given) {
                    problems.push_back(
                        fmt::format("{}: the events with {} are of no process", question.option, sketch.attribute));
                }
            } else if (!answer) {
                missing.emplace_back(question.option);
            } else if (canRead(question)) {
                if (const std::string problem = take(question, *answer); !problem.empty()) {
                    problems.push_back(fmt::format("{}: {}", question.option, problem));
                }
            }
        }
    }

    int refuse() {
        for (const std::string_view option : missing) {
            problems.push_back(std::string(option) + " is required");
            if (option == "--trigger") {
                problems.back() += fmt::format(": no collection can be asked for with {} events, and {} does nothing",
                                               nameOf(sketch.event), fmt::join(actionsFor(sketch), " or "));
            }
        }
        for (std::size_t index = 0; index + 1 < problems.size(); ++index) {
            console.complain(problems[index]);
        }
        return refuseArguments(console, problems.back(), "init");
    }

    int abandon() {
        prompts.write("\n");
        prompts.flush();
        if (interruption.requested()) {
            return kExitInterrupted;
        }
        console.complain("the input ended before everything was answered, and nothing is written");
        return kExitUnusable;
    }

    // Asks for all that the options do not say. Returns false at the end of the input.
    bool ask() {
        if (!options.answers.front()) {
            prompts.write("Attributes of events that have a limit:\n" + watchableAttributes());
        }
        for (std::size_t index = 0; index < std::size(kQuestions); ++index) {
            const Question& question = kQuestions[index];
            if (!applies(question)) {
                continue;
            }
            if (const auto& given = options.answers[index]) {
                const std::string problem = take(question, *given);
                if (problem.empty()) {
                    continue;
                }
                tell(fmt::format("{}: {}", question.option, problem));
            }
            if (!ask(question.text, hintOf(question), defaultOf(question),
                     [&](const std::string& answer) { return take(question, answer); })) {
                return false;
            }
        }
        return !options.rules.empty() || ask("Which file is to be written?", "the tests come beside it", kDefaultRules,
                                             [&](const std::string& answer) {
                                                 rules = answer;
                                                 return answer.empty() ? "expected a name" : whyNotWritten(answer);
                                             });
    }

    // Asks until the answer is one.
    bool ask(const char* text, const std::string& hint, const std::optional<std::string>& none, const auto& read) {
        for (;;) {
            prompts.write(fmt::format("{} ({}){}: ", text, hint, none ? " [" + *none + "]" : ""));
            prompts.flush();
            const auto answer = answers.next();
            if (!answer) {
                return false;
            }
            const std::string problem = read(answer->empty() && none ? *none : *answer);
            if (problem.empty()) {
                return true;
            }
            tell(problem);
        }
    }

    void tell(const std::string& problem) { prompts.write("  " + printable(problem) + "\n"); }

    std::string hintOf(const Question& question) const {
        if (question.read == readAttribute) {
            return "one of those above";
        }
        if (question.read == readTimes) {
            return "a whole number";
        }
        if (question.read == readShare) {
            return "such as 0.1 or 10%";
        }
        if (question.read == readAction) {
            return fmt::format("{}", fmt::join(actionsFor(sketch), " or "));
        }
        if (question.read == readProcess) {
            return "such as camera";
        }
        const std::string_view unit = unitOf(sketch);
        return unit == "kB" ? "in kB, or with a unit such as 200MB" : unit == "%" ? "in percent" : "a number";
    }

    std::string whyNotWritten(const std::string& path) const {
        if (path.ends_with(kSuffixOfTests)) {
            return path + ": that is how a file of tests is called; name the rule document";
        }
        const std::string folder = std::filesystem::path(path).parent_path();
        if (access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0) {
            return fmt::format("{}: the folder cannot be written to: {}", path, systemError(errno));
        }
        std::vector<std::string> there;
        for (const std::string& each : {path, testsBeside(path)}) {
            std::error_code ignored;
            const auto status = std::filesystem::status(each, ignored);
            if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
                return each + ": not a regular file";
            }
            if (std::filesystem::exists(std::filesystem::symlink_status(each, ignored))) {
                there.push_back(each);
            }
        }
        if (options.overwrite || there.empty()) {
            return {};
        }
        return fmt::format("{} {} already; --force overwrites {}", fmt::join(there, " and "),
                           there.size() == 1 ? "exists" : "exist", there.size() == 1 ? "it" : "them");
    }

    int write() {
        const std::string tests = testsBeside(rules);
        const std::string name = std::filesystem::path(rules).filename();
        Output out(console.out);
        for (const auto& [path, text] :
             {std::pair(rules, documentOf(sketch)), std::pair(tests, testsOf(sketch, name))}) {
            if (const std::string problem = replaceFile(path, text); !problem.empty()) {
                out.flush();
                console.complain(fmt::format("{}: {}", path, problem));
                return kExitUnusable;
            }
            out.write(fmt::format("wrote  {}\n", printable(path)));
        }
        out.write(fmt::format("rules  {}\n", printable(summaryOf(sketch))));
        out.write(fmt::format("next   vig check --strict {0}; vig test --coverage --mutants {1}\n", shellWord(rules),
                              shellWord(tests)));
        return console.finish(out, kExitDone);
    }

    const InitOptions& options;
    const Console& console;
    const Interruption& interruption;
    std::string rules;
    Answers answers;
    Output prompts;
    Sketch sketch;
    bool hasLimit = false;
    std::vector<std::string> missing;
    std::vector<std::string> problems;
};

constexpr const char* kList =
    R"(over a budget  one action, when the attribute is above the limit for the first time
               vig init --attribute vmRssKB --process camera --limit 200MB
debounce       only when it is so several times in a row, not at a short peak
               vig init --attribute vmRssKB --process camera --limit 200MB --times 3
hysteresis     again each time, once it has been down to a release limit
               vig init --attribute vmRssKB --process camera --limit 200MB --release 140MB
sampled        on a share of the devices, which each of them draws when it starts
               vig init --attribute vmRssKB --process camera --limit 200MB --share 10%
escalation     once more, when it goes on growing
               vig init --attribute vmRssKB --process camera --limit 200MB --release 140MB --second-limit 1GB
All of these go together.
)";

constexpr const char* kHelp =
    R"(The rule document is written to RULES, and its tests beside it, as NAME.test.json for NAME.json. They reach all of
the document, and notice each small change of it. Both are meant to be read and changed.

What is needed and not given is asked for, with all else that is not given, if the standard input is a terminal. 200MB
are 204800 kB.

Example: the camera, each time that it is above 200 MB three times in a row, on one device in ten:
  vig init camera.json --attribute vmRssKB --process camera --limit 200MB --times 3 --release 140MB --share 10%)";

}  // namespace

int init(const InitOptions& options, const Console& console, const Interruption& interruption) {
    if (!options.list) {
        return Init(options, console, interruption).run();
    }
    Output out(console.out);
    out.write(kList);
    return console.finish(out, kExitDone);
}

void addInit(CommandLine& commandLine, InitOptions& options) {
    Verb verb =
        commandLine.addVerb("init", "Writes a rule document of a common kind, and its tests.", kHelp, init, options);
    verb.argument("RULES", options.rules, Verb::Need::Optional, "The file to write (default: rules.json)");
    for (std::size_t index = 0; index < std::size(kQuestions); ++index) {
        const Question& question = kQuestions[index];
        verb.option(question.option, question.kind, question.description,
                    [&answer = options.answers[index]](const std::string& text) {
                        answer = text;
                        return std::string();
                    });
    }
    verb.flag("--list", options.list, "Prints which kinds there are, with an example of each");
    verb.flag("--force", options.overwrite, "Overwrites files that are there");
}

}  // namespace Brenta::OS::VIG::Tool
