#include "tools/vig/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tools/vig/check/WarningNames.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/help/ProgramHelp.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr unsigned kMostThreads = 256;
constexpr const char* kRunHint = "Try: vig run --help";

constexpr const char* kGeneralFooter =
    "Exit status: 0 done, 1 the rules were refused or a test failed, 2 bad arguments or input, or the output cannot\n"
    "be written, 130 interrupted (but for watch, which Ctrl-C ends with its summary).\n"
    "`vig VERB --help` has an example.";

constexpr const char* kCheckFooter =
    R"(Errors are what the library refuses, all of them, and cycles without end. Warnings, by name:
{}
Exit status: 0 nothing or only warnings, 1 errors, 2 a file cannot be read. Columns count bytes, in sarif characters.

Example: check before a commit, as strictly as possible, for a service that arms timeouts:
  vig check --strict --allow unused-timeout rules/*.json)";

constexpr const char* kRunFooter = R"(An event record is one JSON object a line; attributes are grouped by their kind:
  {{"event":"ProcessMemoryHeartBeat","string":{{"processName":"camera"}},"int64":{{"vmRssKB":1000,"vmSwapKB":24}}}}
  {{"event":"Timeout","timeout_id":3}}
Kinds are uint64, int64, double, bool and string; "time_ms" may tell when it was.

Files of records may be compressed by gzip or zstd.

--explain shows each transition that listens for the event, up to the one that fires, and each filter, up to the
one that does not hold, with the values that it compared. What listens for other events is left out.

With several files, each is the recording of a device with machines of its own, which neither the others nor -j
change. A summary ends the run: of each transition how often it fired and on how many devices, and the triggers a
device. A storm is a device with at least {} triggers, more than one for each {} of its events. A file that cannot be
read to its end is told and the others go on. --format json gives the summary alone, which `vig summary` reads,
jsonl gives it in the last line. --explain and --why-not are for one file.

Example: which events of a recording fire a trigger? And why did the second transition not fire?
  vig run rules.json trace.jsonl --format jsonl | grep '"type":"trigger"'
  vig run rules.json trace.jsonl --why-not 'configs[0].payload.data.transitions[1]'
Which transitions fire in a fleet?
  vig run rules.json devices/*.jsonl.gz --summary-only)";

constexpr const char* kSummaryFooter =
    R"(Each line of the files is a summary that `vig run --format json` has written; all are of one rule document. The parts
of a fleet, merged, give the same as the whole.

Example: two halves of a fleet, replayed apart
  vig run rules.json a/*.jsonl.gz --format json > a.json
  vig run rules.json b/*.jsonl.gz --format json > b.json
  vig summary a.json b.json)";

constexpr const char* kWatchFooter =
    R"(Events: ProcessMemoryHeartBeat and ProcessCpuHeartBeat of each process, SystemMemoryHeartBeat, and
ZramHeartBeat of each zram device. Saving RULES meanwhile delivers it again; Ctrl-C ends with the summary.

Example: watch for ten seconds, then play the recording to rules that were changed:
  vig watch rules.json --duration 10s --record trace.jsonl
  vig run changed.json trace.jsonl)";

constexpr const char* kCatalogueFooter =
    R"(A catalogue tells which attributes the events of each type have, grouped by kind as in event records, and which
the machines' context has, which no recording shows. It is JSON to be edited by hand:
  {"events":{"ProcessMemoryHeartBeat":{"int64":["vmRssKB"]}},"context":{"int64":["limitKB"]}}
With "extends":"built-in" it adds to what the tool knows, else it stands in its place.

Example: what do the events of this machine have?
  vig watch rules.json --duration 10s --record trace.jsonl
  vig catalogue trace.jsonl > catalogue.json)";

constexpr const char* kTestFooter =
    R"(A test file names a rule document and what it should do; paths in it are relative to it:
  { "rules": "rules.json",
    "tests": [
      { "name": "the camera is collected once",
        "events": [ {"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},
                     "int64":{"vmRssKB":400000,"vmSwapKB":0}} ],
        "seed": 5489, "context": { "int64": { "limit": 5 } },
        "expect": { "triggers": [ { "process": "camera", "event": 1, "metadata_contains": ["vmSwapKB:0"] } ],
                    "log": [], "states": { "7": "end" }, "moves": 1 } } ] }
"events" may also be the name of a file of event records. A trigger may be told by its "name", "process", "config"
(id), "event" (number), "metadata" (all of it) and "metadata_contains"; a log line is its message, or an object with
"message" and "priority". Triggers and log lines that are not expected fail the test, but for the line that the
document was found. States and moves are checked where they are given. "seed" and "context" may be left out.

Coverage counts the transitions that fired, and for each filter whether it was ever true and whether it was ever false.

Example: all tests, with what they do not reach, and a report for the build server:
  vig test rules/*.test.json --coverage-min 100 --junit results.xml)";

constexpr const char* kGraphFooter =
    R"(A box is a state; its rows are the transitions that leave it, in the order in which they are tried. What no chain of
transitions reaches is grey. With --events, a line is the wider the more often its transition fired, red and dotted
where it was tried and never fired, thin, grey and dashed where it was never tried.

Example: where does the recording get stuck?
  vig graph rules.json --events trace.jsonl --format svg > rules.svg)";

// An option that takes one of a few words: the first one unless it is given.
template <typename Value, std::size_t Count>
void addChoice(CLI::App& verb, const std::string& name, Value& value,
               const std::array<std::pair<const char*, Value>, Count>& choices, const std::string& description) {
    std::string words;
    for (const auto& [word, meaning] : choices) {
        words += (words.empty() ? "" : "|") + std::string(word);
    }
    const auto read = [&value, choices, name, words](const std::string& text) {
        const auto chosen =
            std::find_if(choices.begin(), choices.end(), [&](const auto& each) { return each.first == text; });
        if (chosen == choices.end()) {
            throw CLI::ValidationError(name, "expected " + words + ", got " + text);
        }
        value = chosen->second;
    };
    verb.add_option_function<std::string>(name, read, description + " (default: " + choices[0].first + ")")
        ->type_name(words);
}

// An empty name is a variable of a script that has no value, rather than an option that was not given.
std::string whyNoName(const std::string& name) {
    return name.empty() ? "expected a name, got nothing" : "";
}

void addRules(CLI::App& verb, std::string& rules) {
    verb.add_option("RULES", rules, "The rule document")->required();
}

// What a replay or a live run depends on besides the events.
void addSurroundings(CLI::App& verb, std::uint32_t& seed, std::string& contextFile) {
    verb.add_option("--seed", seed,
                    "Seed of the function PseudoRandomDouble, so that a run repeats exactly (default: " +
                        std::to_string(seed) + ")")
        ->type_name("N");
    verb.add_option("--context", contextFile, "A file with one event record: the attributes of every machine's context")
        ->check(whyNoName)
        ->type_name("FILE");
}

template <std::size_t Count>
void addRuleOptions(CLI::App& verb, RuleOptions& options,
                    const std::array<std::pair<const char*, ReportFormat>, Count>& formats,
                    const std::string& formatDescription) {
    addRules(verb, options.rules);
    addChoice(verb, "--format", options.format, formats, formatDescription);
    addSurroundings(verb, options.seed, options.contextFile);
}

void addDuration(CLI::App& verb, const std::string& name, std::chrono::milliseconds& duration,
                 std::chrono::milliseconds least, const std::string& description) {
    const auto read = [&duration, least, name](const std::string& text) {
        const auto parsed = parseDuration(text);
        if (!parsed || *parsed < least) {
            throw CLI::ValidationError(name, "expected a time such as 500ms, 1s or 2m, got " + text);
        }
        duration = *parsed;
    };
    verb.add_option_function<std::string>(name, read, description)->type_name("TIME");
}

std::string checkFooter() {
    std::string names;
    for (const auto& [name, meaning] : kWarningNames) {
        names += fmt::format("  {:<21}{}\n", name, meaning);
    }
    return fmt::format(kCheckFooter, names);
}

void addCheck(CLI::App& app, CheckOptions& options) {
    CLI::App& verb = *app.add_subcommand("check", "Says what is wrong with rule documents, all at once.");
    verb.add_option("RULES", options.rules, "The rule documents")->required();
    addChoice<FindingFormat, 3>(
        verb, "--format", options.format,
        {{{"text", FindingFormat::Text}, {"json", FindingFormat::Json}, {"sarif", FindingFormat::Sarif}}},
        "text for people, json for programs, sarif for code reviews");
    verb.add_flag("--strict", options.strict, "Lets warnings give the exit status 1");
    const auto allow = [&options](const std::vector<std::string>& names) {
        std::vector<std::string_view> known;
        std::ranges::transform(kWarningNames, std::back_inserter(known), &WarningName::name);
        for (const std::string& name : names) {
            if (std::ranges::find(known, name) == known.end()) {
                throw CLI::ValidationError("--allow",
                                           "there is no warning " + Tool::quoted(name) + suggestion(name, known));
            }
        }
        options.allowed = names;
    };
    verb.add_option_function<std::vector<std::string>>("--allow", allow,
                                                       "Leaves the warnings of that name out; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    verb.add_option("--catalogue", options.catalogueFile,
                    "The attributes of events and contexts, as `vig catalogue` prints them (default: what `vig watch`\n"
                    "produces)")
        ->check(whyNoName)
        ->type_name("FILE");
    verb.add_option("--events", options.eventsFile,
                    "Event records: their attributes stand in the place of those that the tool knows, or add to FILE's")
        ->check(whyNoName)
        ->type_name("EVENTS");
    verb.footer(checkFooter());
}

void addRun(CLI::App& app, RunOptions& options, FleetOptions& fleet) {
    CLI::App& verb = *app.add_subcommand("run", "Offers recorded events to the machines of a rule document.");
    addRuleOptions<3>(verb, options,
                      {{{"text", ReportFormat::Text}, {"jsonl", ReportFormat::Jsonl}, {"json", ReportFormat::Json}}},
                      "text for people, jsonl for programs, json for a summary alone");
    CLI::Option& seed = *verb.get_option("--seed");
    seed.description(seed.get_description() + "; in a summary, each device draws by the seed and its name");
    verb.add_option("EVENTS", fleet.devices,
                    "The event records, a file for each device (default: -, which is standard input)");
    verb.add_flag("--explain", options.explain, "Tells what every machine decides on every event, and why");
    verb.add_option("--why-not", options.whyNot,
                    "Tells at the end what kept the transition at that path of the document from firing")
        ->check(whyNoName)
        ->type_name("PATH");
    fleet.threads = std::max(std::thread::hardware_concurrency(), 1u);
    verb.add_option("-j,--jobs", fleet.threads, "How many devices run at once (default: as many as there are cores)")
        ->check(CLI::Range(1u, kMostThreads).description(""))
        ->type_name("N");
    verb.add_flag("--summary-only", fleet.summaryOnly, "Tells only what all devices did together, also of one device");
    verb.footer(fmt::format(kRunFooter, FleetSummary::Storm::LEAST_TRIGGERS, FleetSummary::Storm::MOST_EVENTS));
}

// One device without a summary is no fleet.
Command runCommand(RunOptions options, FleetOptions fleet) {
    const bool wantsSummary = fleet.summaryOnly || options.format == ReportFormat::Json;
    if (fleet.devices.size() <= 1 && !wantsSummary) {
        options.events = fleet.devices.empty() ? "-" : fleet.devices.front();
        return options;
    }
    if (options.explain || !options.whyNot.empty()) {
        return Answer{kExitUnusable, "--explain and --why-not tell of one device: give one file, and no summary",
                      kRunHint};
    }
    if (std::ranges::count(fleet.devices, "-") > 1) {
        return Answer{kExitUnusable, "standard input can be one device only", kRunHint};
    }
    if (fleet.devices.empty()) {
        fleet.devices = {"-"};
    }
    static_cast<RunOptions&>(fleet) = options;
    return fleet;
}

void addSummary(CLI::App& app, SummaryOptions& options) {
    CLI::App& verb = *app.add_subcommand("summary", "Merges the summaries of runs over parts of a fleet.");
    verb.add_option("FILE", options.files, "Files of summaries (default: -, which is standard input)");
    addChoice<ReportFormat, 2>(verb, "--format", options.format,
                               {{{"text", ReportFormat::Text}, {"json", ReportFormat::Json}}},
                               "text for people, json for programs and to be merged again");
    verb.footer(kSummaryFooter);
}

void addWatch(CLI::App& app, WatchOptions& options) {
    CLI::App& verb =
        *app.add_subcommand("watch", "Offers live events of this machine to the machines of a rule document.");
    addRuleOptions<2>(verb, options, {{{"text", ReportFormat::Text}, {"jsonl", ReportFormat::Jsonl}}},
                      "text for people, jsonl for programs");
    addDuration(verb, "--interval", options.interval, std::chrono::milliseconds(1),
                "The time from one sample to the next (default: 1s)");
    addDuration(verb, "--duration", options.duration, std::chrono::milliseconds(0),
                "The time after which to stop (default: 30s)");
    verb.add_option("--record", options.recordFile, "Writes the events there, as records that `vig run` reads")
        ->check(whyNoName)
        ->type_name("FILE");
    verb.add_flag("--force", options.overwrite, "Lets --record overwrite a file");
    verb.footer(kWatchFooter);
}

void addCatalogue(CLI::App& app, CatalogueOptions& options) {
    CLI::App& verb = *app.add_subcommand("catalogue", "Prints which attributes the events of a recording have.");
    verb.add_option("EVENTS", options.events, "The event records (default: -, which is standard input)");
    verb.footer(kCatalogueFooter);
}

void addTest(CLI::App& app, TestOptions& options) {
    CLI::App& verb = *app.add_subcommand("test", "Runs the tests of rule documents.");
    verb.add_option("FILE", options.files, "Files of tests")->required();
    verb.add_option("--filter", options.filter, "Runs only the tests whose name has this part; * and ? are wildcards")
        ->type_name("NAME");
    const auto percentage = [](const std::string& text) {
        double number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isOne = error == std::errc() && end == text.data() + text.size() && number >= 0 && number <= 100;
        return isOne ? std::string() : "expected a number from 0 to 100, got " + text;
    };
    verb.add_flag("--coverage", options.coverage, "Tells which transitions and filters the tests do not reach");
    verb.add_option("--coverage-min", options.coverageMin, "Fails if less of any rule document is reached")
        ->check(percentage)
        ->type_name("PERCENT");
    verb.add_option("--junit", options.junitFile, "Writes the results there, as JUnit XML")
        ->check(whyNoName)
        ->type_name("FILE");
    verb.footer(kTestFooter);
}

void addGraph(CLI::App& app, GraphOptions& options) {
    CLI::App& verb = *app.add_subcommand("graph", "Draws the machines of a rule document.");
    addRules(verb, options.rules);
    addChoice<GraphFormat, 4>(verb, "--format", options.format,
                              {{{"dot", GraphFormat::Dot},
                                {"svg", GraphFormat::Svg},
                                {"png", GraphFormat::Png},
                                {"mermaid", GraphFormat::Mermaid}}},
                              "dot for Graphviz; svg and png, which call it; mermaid for a README");
    verb.add_option("--events", options.events, "Event records to replay: shows how often each transition fired")
        ->check(whyNoName)
        ->type_name("FILE");
    addSurroundings(verb, options.seed, options.contextFile);
    verb.footer(kGraphFooter);
}

// Where the options of each verb go.
struct VerbOptions {
    CheckOptions check;
    RunOptions run;
    FleetOptions fleet;
    SummaryOptions summary;
    WatchOptions watch;
    CatalogueOptions catalogue;
    TestOptions test;
    GraphOptions graph;
};

void addAll(CLI::App& app, VerbOptions& options) {
    app.set_version_flag("--version", "vig " VIG_VERSION, "Prints the version and exits");
    app.set_help_flag("-h,--help", "Prints this help and exits");
    app.require_subcommand(1);
    app.footer(kGeneralFooter);
    addCheck(app, options.check);
    addRun(app, options.run, options.fleet);
    addSummary(app, options.summary);
    addWatch(app, options.watch);
    addCatalogue(app, options.catalogue);
    addTest(app, options.test);
    addGraph(app, options.graph);
}

constexpr const char* kProgram = "vig";
constexpr const char* kDescription = "Runs rule documents at a desk, with the library that runs them on a device.";

std::string whereHelpIs(const CLI::App* app) {
    const auto verbs = app->get_subcommands();
    return "Try: vig " + (verbs.empty() ? "" : verbs.front()->get_name() + " ") + "--help";
}

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
    help.argument = option.get_items_expected_max() > 0 ? option.get_type_name() : "";
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

Command parseCommandLine(int count, const char* const* arguments) {
    VerbOptions options;
    CLI::App app(kDescription, kProgram);
    addAll(app, options);
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        return Answer{kExitDone, app.help(), {}};
    } catch (const CLI::CallForVersion&) {
        return Answer{kExitDone, app.version() + "\n", {}};
    } catch (const CLI::Error& error) {
        return Answer{kExitUnusable, error.what(), whereHelpIs(&app)};
    }
    if (app.got_subcommand("check")) {
        return options.check;
    }
    if (app.got_subcommand("run")) {
        return runCommand(std::move(options.run), std::move(options.fleet));
    }
    if (app.got_subcommand("summary")) {
        return options.summary;
    }
    if (app.got_subcommand("catalogue")) {
        return options.catalogue;
    }
    if (app.got_subcommand("test")) {
        return options.test;
    }
    if (app.got_subcommand("graph")) {
        return options.graph;
    }
    return options.watch;
}

ProgramHelp programHelp() {
    VerbOptions options;
    CLI::App app(kDescription, kProgram);
    addAll(app, options);
    ProgramHelp help{VIG_VERSION, helpOf(app), {}};
    for (const CLI::App* const verb : app.get_subcommands([](const CLI::App*) { return true; })) {
        help.verbs.push_back(helpOf(*verb));
    }
    return help;
}

std::optional<std::chrono::milliseconds> parseDuration(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, double>, 5> kUnits = {
        {{"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}, {"", 1000}}};
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

}  // namespace Brenta::OS::VIG::Tool
