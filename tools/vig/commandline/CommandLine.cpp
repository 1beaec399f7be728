#include "tools/vig/commandline/CommandLine.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "tools/vig/io/Output.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Wrapped.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr const char* kFooter =
    "Exit status: 0 done, 1 the rules were refused, a test failed or something differs, 2 bad arguments or input, or "
    "the\n"
    "output cannot be written, 3 it was not decided whether something differs, 130 interrupted (but for watch, which\n"
    "Ctrl-C ends with its summary).\n"
    "`vig VERB --help` has an example.";

OptionHelp helpOf(const CLI::Option& option) {
    OptionHelp help{{}, !option.nonpositional(), option.get_required(), option.get_items_expected_max() > 1,
                    {}, option.get_description()};
    if (help.isPositional) {
        help.names = {option.get_name(true)};
        return help;
    }
    for (const std::string& name : option.get_snames()) {
        help.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        help.names.push_back("--" + name);
    }
    help.argument = option.get_items_expected_max() > 0 ? option.get_type_name() : option.get_option_text();
    return help;
}

VerbHelp helpOf(const CLI::App& app) {
    VerbHelp help{app.get_name(), app.get_description(), {}, app.get_footer()};
    for (const CLI::Option* const option : app.get_options()) {
        help.options.push_back(helpOf(*option));
    }
    return help;
}

}  // namespace

void Verb::argument(const std::string& name, std::string& value, Need need, const std::string& description) {
    app.add_option(name, value, description)->required(need == Need::Required);
}

void Verb::argument(const std::string& name, std::vector<std::string>& values, Need need,
                    const std::string& description) {
    app.add_option(name, values, description)->required(need == Need::Required);
}

void Verb::flag(const std::string& name, bool& value, const std::string& description) {
    app.add_flag(name, value, description);
}

void Verb::flagOrWord(const std::string& name, const std::string& word, const std::string& description,
                      const std::function<void(bool withWord)>& read) {
    const auto take = [name, word, read](const std::string& text) {
        constexpr std::string_view kAlone = "true";  // as the parser calls it
        if (text != kAlone && text != word) {
            throw CLI::ValidationError(name, "expected nothing or " + word + ", got " + text);
        }
        read(text == word);
    };
    app.add_option_function<std::string>(name, take, description)
        ->expected(0)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->option_text("[=" + word + "]");
}

void Verb::text(const std::string& name, std::string& value, const std::string& kind, const std::string& description) {
    app.add_option(name, value, description)->type_name(kind);
}

void Verb::name(const std::string& name, std::string& value, const std::string& kind, const std::string& description) {
    option(name, kind, description, [&value](const std::string& text) {
        value = text;
        return text.empty() ? "expected a name, got nothing" : "";
    });
}

void Verb::names(const std::string& name, std::vector<std::string>& values, std::vector<std::string_view> known,
                 const std::string& what, const std::string& description) {
    repeated(name, "NAME", description, [&values, known = std::move(known), what](const std::string& text) {
        values.push_back(text);
        return std::ranges::find(known, text) != known.end()
                   ? ""
                   : "there is no " + what + " " + inQuotes(text) + suggestion(text, known);
    });
}

void Verb::wholeNumber(const std::string& names, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                       const std::string& description) {
    option(names, "N", description, [&value, least, most](const std::string& text) {
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
            return fmt::format("expected a whole number from {} to {}, got {}", least, most,
                               text.empty() ? "nothing" : text);
        }
        value = number;
        return std::string();
    });
}

void Verb::duration(const std::string& name, std::chrono::milliseconds& value, std::chrono::milliseconds least,
                    const std::string& description) {
    option(name, "TIME", description, [&value, least](const std::string& text) {
        const auto parsed = durationOf(text);
        value = parsed.value_or(value);
        return parsed && *parsed >= least ? "" : "expected a time such as 500ms, 1s or 2m, got " + text;
    });
}

void Verb::option(const std::string& name, const std::string& kind, const std::string& description,
                  const std::function<std::string(const std::string& text)>& read) {
    const auto take = [longName = name.substr(name.find("--")), read](const std::string& text) {
        if (const std::string problem = read(text); !problem.empty()) {
            throw CLI::ValidationError(longName, problem);
        }
    };
    app.add_option_function<std::string>(name, take, description)->type_name(kind);
}

void Verb::optionalText(const std::string& name, const std::string& kind, const std::string& description,
                        const std::function<std::string(const std::string& text)>& read) {
    option(name, "[" + kind + "]", description, read);
    app.get_option(name)->expected(0, 1);
}

void Verb::repeated(const std::string& name, const std::string& kind, const std::string& description,
                    const std::function<std::string(const std::string& text)>& read) {
    // The check is given each text as it is; of the list that is made of them, nothing is needed any more.
    app.add_option_function<std::vector<std::string>>(
           name, [](const auto&) {}, description)
        ->check(read)
        ->type_name(kind)
        ->allow_extra_args(false);
}

void Verb::refuseTogether(const std::string& name, const std::string& other) {
    app.get_option(name)->excludes(app.get_option(other));
}

CommandLine::CommandLine()
    : app(std::make_unique<CLI::App>(
          "Checks, runs and tests rule documents with the library that runs them on a device.", "vig")) {
    app->set_version_flag("--version", "vig " VIG_VERSION, "Prints the version and exits");
    app->set_help_flag("-h,--help", "Prints this help and exits");
    app->require_subcommand(1);
    app->footer(kFooter);
}

CommandLine::~CommandLine() = default;

Verb CommandLine::addVerb(const std::string& name, const std::string& description, const std::string& footer, Run run) {
    CLI::App* const added = app->add_subcommand(name, description);
    added->footer(footer);
    verbs.emplace_back(added, std::move(run));
    return Verb(*added);
}

std::optional<int> CommandLine::parse(int count, const char* const* arguments, const Console& console) {
    const std::string_view first = count > 1 ? arguments[1] : "";
    const bool isVerb = std::ranges::any_of(verbs, [&](const auto& verb) { return verb.first->get_name() == first; });
    if (!isVerb && !first.starts_with('-')) {
        return refuseVerb(first, console);
    }
    std::string answer;
    try {
        app->parse(count, arguments);
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        answer = app->help();
    } catch (const CLI::CallForVersion&) {
        answer = app->version() + "\n";
    } catch (const CLI::Error& error) {
        const auto named = app->get_subcommands();
        return named.empty() ? refuseVerb(first, console)
                             : refuseArguments(console, error.what(), named.front()->get_name());
    }
    Output output(console.out);
    output.write(answer);
    return console.finish(output, kExitDone);
}

// Says that there is no such verb, or none at all, and lists those that there are.
int CommandLine::refuseVerb(std::string_view given, const Console& console) const {
    std::vector<std::string> names;
    std::size_t width = 0;
    for (const auto& [verb, run] : verbs) {
        names.push_back(verb->get_name());
        width = std::max(width, names.back().size());
    }
    const std::vector<std::string_view> known(names.begin(), names.end());
    console.complain((given.empty() ? "a verb is missing" : "there is no verb " + inQuotes(given)) +
                     beforeList(given, known));
    for (const auto& [verb, run] : verbs) {
        const std::string line = fmt::format("  {:<{}}  {}", verb->get_name(), width, verb->get_description());
        for (const std::string& each : wrapped(line, kColumns, width + 4)) {
            console.say(each);
        }
    }
    console.say("Try: vig --help");
    return kExitUnusable;
}

int CommandLine::run(const Console& console, const Interruption& interruption) const {
    const auto named = std::ranges::find_if(verbs, [](const auto& verb) { return verb.first->parsed(); });
    return named->second(console, interruption);
}

ProgramHelp CommandLine::help() const {
    ProgramHelp help{VIG_VERSION, helpOf(*app), {}};
    for (const auto& [verb, run] : verbs) {
        help.verbs.push_back(helpOf(*verb));
    }
    return help;
}

std::optional<std::chrono::milliseconds> durationOf(std::string_view text) {
    constexpr std::pair<std::string_view, double> kUnits[] = {
        {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}, {"", 1000}};
    constexpr double kMost = 366.0 * 24 * 3'600'000;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    for (const auto& [name, milliseconds] : kUnits) {
        if (error == std::errc() && unit == name && number >= 0 && number * milliseconds <= kMost) {
            return std::chrono::milliseconds(std::llround(number * milliseconds));
        }
    }
    return std::nullopt;
}

int refuseArguments(const Console& console, std::string_view what, const std::string& verb) {
    console.complain(what);
    console.say("Try: vig " + verb + " --help");
    return kExitUnusable;
}

}  // namespace Brenta::OS::VIG::Tool
