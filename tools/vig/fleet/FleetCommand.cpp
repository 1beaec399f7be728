#include "tools/vig/fleet/FleetCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/Fleet.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/fleet/Jobs.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/page/RunPage.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

int fleet(const FleetOptions& options, const Console& console, const Interruption& interruption) {
    const ReportFormat format = options.summaryOnly ? ReportFormat::None : options.format;
    RuleRun rules(options, {format, console.wantsColours(), "", options.verbose}, console, interruption);
    // The machines of the delivery stay idle: each device has its own.
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    RuleSession& session = rules.session();
    Progress progress(terminalFor(format, console),
                      {options.byDevice ? 0 : options.devices.size(), sizeOfEvents(options.devices, console)});
    const FleetPlan plan{session.document(),
                         libraryRegistry(),
                         session.contextAttributes(),
                         options.draws,
                         format,
                         console.wantsColours(),
                         console,
                         interruption,
                         progress};
    FleetSummary summary = FleetSummary::of(plan.document);
    Fleet devices(options.devices, console, interruption, rules.output(), progress);
    const auto runFile = [&summary, &plan](DeviceRunner& runner, const std::string& device, Output& text) {
        if (plan.format == ReportFormat::Text) {
            text.write("\n" + headingOf(nameOfEvents(device)));
        }
        DeviceResult result = runner.run(device, text);
        plan.progress.addDevice();
        return Fleet::Ended{result.problem, [&summary, result] { summary.add(result); }};
    };
    const auto runByDevice = [&summary, &plan](DeviceRunner& runner, const std::string& events, Output& text) {
        FleetSummary part = FleetSummary::of(plan.document);
        const std::string problem = runner.runByDevice(events, text, part);
        return Fleet::Ended{problem, [&summary, part] { summary.merge(part); }};
    };
    summary.unfinished += devices.run(options.threads, [&] {
        const auto runner = std::make_shared<DeviceRunner>(plan);
        return [&, runner](const std::string& events, Output& text) {
            return options.byDevice ? runByDevice(*runner, events, text) : runFile(*runner, events, text);
        };
    });
    const bool isBehindDevices = options.format == ReportFormat::Text && !options.summaryOnly;
    rules.output().write((isBehindDevices ? "\n" : "") + summaryIn(options.format, summary, "fleet"));
    const int status = summary.failed > 0 ? kExitUnusable : kExitDone;
    return rules.abandon(interruption.requested() ? kExitInterrupted : status);
}

namespace {

constexpr const char* kFleetHelp = R"(An event record is one JSON object a line; attributes are grouped by their kind:
  {{"event":"ProcessMemoryHeartBeat","string":{{"processName":"camera"}},"int64":{{"vmRssKB":1000,"vmSwapKB":24}}}}
  {{"event":"Timeout","timeout_id":3}}
Kinds are uint64, int64, double, bool and string; "time_ms" may tell when it was.

Files of records may be compressed by gzip or zstd.

A rule document describes state machines, which are told by their place in it, from 0, and by the id of their
configuration. A trigger is what the device's trigger service would be asked for: to collect diagnostics.

--explain shows each transition that listens for an event, up to the one that fires, and each filter, up to the one
that does not hold, with the values that it compared; in text only where a transition fires, or comes nearer to firing
than before, since the machine is in its state: more of its filters hold, or the numbers that stop it are less than
half as far apart. --explain=all shows every event, as jsonl does.

--why-not takes a path of the document, its last part such as transitions[1], or a move such as 'start -> end', and
without any tells of all transitions that never fired. It stands last, or is written --why-not=TRANSITION.

--format html writes all of it as one page for a browser, on which the recording can be stepped through: the machines
as `vig graph` draws them, a time line, and what each filter compared.

With several files, each is the recording of a device with machines of its own, which neither the others nor -j
change. A summary ends the run: of each transition how often it fired and on how many devices, and the triggers a
device. A storm is a device with at least {} triggers, more than one for each {} of its events. A file that cannot be
read to its end is told and the others go on. --format json gives the summary alone, which `vig summary` reads,
jsonl gives it in the last line. --explain and --why-not are for one file.

With --by-device, a file has the records of any number of devices, each of which names its own, and a device may be told
to end, after which it needs no memory:
  {{"device":"a","event":"Test"}}
  {{"device":"a","ended":true}}

Example: which events of a recording fire a trigger? And why did the second transition not fire?
  vig run rules.json trace.jsonl --format jsonl | grep '"type":"trigger"'
  vig run rules.json trace.jsonl --why-not 'transitions[1]'
What happened, for who does not have the tool?
  vig run rules.json trace.jsonl --format html > replay.html
What did the rules make of the camera in the first minute?
  vig run rules.json trace.jsonl --explain --where processName=camera --to 1m
Which transitions fire in a fleet?
  vig run rules.json devices/*.jsonl.gz --summary-only)";

int runOneOrMany(const FleetOptions& given, const Console& console, const Interruption& interruption) {
    FleetOptions options = given;
    std::error_code ignored;
    if (options.devices.empty() && options.whyNot && std::filesystem::exists(*options.whyNot, ignored)) {
        return refuseArguments(console,
                               "--why-not takes " + inQuotes(*options.whyNot) +
                                   " for a transition: write it behind the files, or --why-not=TRANSITION",
                               "run");
    }
    if (options.devices.empty()) {
        options.devices = {"-"};
    }
    if (std::ranges::count(options.devices, "-") + (isStandardInput(options.rules) ? 1 : 0) > 1) {
        return refuseArguments(console, kStandardInputTwice, "run");
    }
    const bool isOneDevice = options.devices.size() == 1 && !options.byDevice;
    if (options.format == ReportFormat::Html) {
        if (!isOneDevice || options.summaryOnly || options.explain != Explain::Nothing || options.whyNot) {
            return refuseArguments(console,
                                   "--format html tells all of one device: give one file, and neither --explain, "
                                   "--why-not, --by-device nor --summary-only",
                                   "run");
        }
        options.events = options.devices.front();
        return runToPage(options, console, interruption);
    }
    if (isOneDevice && !options.summaryOnly && options.format != ReportFormat::Json) {
        options.events = options.devices.front();
        return run(options, console, interruption);
    }
    if (options.explain != Explain::Nothing || options.whyNot || options.selection.isAny()) {
        return refuseArguments(console,
                               "--explain, --why-not, --machine, --where, --from and --to tell of one device: give one "
                               "file, and neither a summary nor --by-device",
                               "run");
    }
    return fleet(options, console, interruption);
}

}  // namespace

void addRun(CommandLine& commandLine, FleetOptions& options) {
    Verb verb = commandLine.addVerb(
        "run", "Replays recorded events, and shows what the rules do with them.",
        fmt::format(kFleetHelp, FleetSummary::Storm::LEAST_TRIGGERS, FleetSummary::Storm::MOST_EVENTS), runOneOrMany,
        options);
    addRules(verb, options);
    verb.choice("--format", options.format,
                {{"text", ReportFormat::Text},
                 {"jsonl", ReportFormat::Jsonl},
                 {"json", ReportFormat::Json},
                 {"html", ReportFormat::Html}},
                "text for people, jsonl for programs, json for a summary alone, html for a page to step through it");
    addSurroundings(verb, options, "; in a summary, each device draws by the seed and its name");
    verb.argument("EVENTS", options.devices, Verb::Need::Optional,
                  "The event records, a file for each device (default: -, which is standard input)");
    verb.flagOrWord(
        "--explain", "all",
        "Tells what machines decide, and why: on events by which a transition fires or comes near, or on all",
        [&options](bool all) { options.explain = all ? Explain::All : Explain::Highlights; });
    verb.optionalText("--why-not", "TRANSITION",
                      "Tells at the end what kept that transition from firing, or all those that never fired",
                      [&options](const std::string& text) {
                          options.whyNot = text;
                          return std::string();
                      });
    addSelection(verb, options.selection);
    addVerbose(verb, options);
    addJobs(verb, options.threads);
    verb.flag("--by-device", options.byDevice,
              "Gives each device that the records name machines of its own, and ends with a summary");
    verb.flag("--summary-only", options.summaryOnly, "Tells only what all devices did together, also of one device");
}

}  // namespace Brenta::OS::VIG::Tool
