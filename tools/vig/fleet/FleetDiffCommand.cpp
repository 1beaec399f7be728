#include "tools/vig/fleet/FleetDiffCommand.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "tools/vig/catalogue/CatalogueCommand.h"
#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/DiffRunner.h"
#include "tools/vig/fleet/DiffSummary.h"
#include "tools/vig/fleet/Fleet.h"
#include "tools/vig/fleet/Jobs.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/Replay.h"

namespace Brenta::OS::VIG::Tool {

int fleetDiff(const FleetDiffOptions& options, const Console& console, const Interruption& interruption) {
    AttributeSet context;
    if (const auto status = readContext(options.contextFile, console, interruption, context)) {
        return *status;
    }
    const auto oldText = readRules(options.rules, console, interruption);
    const auto newText = oldText ? readRules(options.newRules, console, interruption) : std::nullopt;
    if (!newText) {
        return interruption.requested() ? kExitInterrupted : kExitUnusable;
    }
    const DocumentModel old(options.rules, *oldText);
    const DocumentModel now(options.newRules, *newText);
    NoReceiver quiet;
    const PlatformServices services(quiet);
    const ReportFormat format = options.summaryOnly ? ReportFormat::None : options.format.ofDevices;
    Progress progress(terminalFor(format, console), {options.devices.size(), sizeOfEvents(options.devices, console)});
    const DiffPlan plan{{&old, &now}, pairsOf(old, now), libraryRegistry(), context, options.draws,
                        format,       console,           interruption,      progress};
    Output output(console.out);
    DiffSummary summary = DiffSummary::of(old, now);
    Fleet devices(options.devices, console, interruption, output, progress);
    summary.unfinished += devices.run(options.threads, [&] {
        const auto runner = std::make_shared<DiffRunner>(plan);
        return [&summary, &progress, runner](const std::string& device, Output& text) {
            const DeviceDiff diff = runner->run(device, text);
            progress.addDevice();
            return Fleet::Ended{diff.problem, [&summary, diff] { summary.add(diff); }};
        };
    });
    output.write(summaryIn(options.format.ofDevices, summary, "fleet_diff"));
    const int status = summary.isDifferent() ? kExitDifferent : kExitDone;
    return console.finish(output, interruption.requested() ? kExitInterrupted
                                  : summary.failed > 0     ? kExitUnusable
                                                           : status);
}

namespace {

constexpr const char* kFleetDiffHelp =
    R"(Without files of events, both documents are compared for all events: each two machines are proved to do the same, or
shown to differ by a shortest recording. The exit status is 0 if they do the same, 1 if not, 3 if it is not decided.
--format html writes a page for a browser, on which each of these recordings can be stepped through, the two machines
side by side.

Each file is the recording of a device, as `vig run` takes it. It is read once, and each event offered to the machines
of both documents. Machines belong together if their configurations have the same id. What counts is what can be seen:
the triggers and the log lines by each event, not the states.

While an event is offered, the k-th number that a machine draws is the same in both documents: it follows from --seed,
the name of the file, the id of the configuration and the number of the event, so that a filter or a machine more moves
no other's draws. The numbers of --draw begin anew with each event and machine.

A device that differs is told with the first event by which it does, and how both documents came to what they did. Then
comes a summary: how many devices newly trigger, trigger no longer, more, less, or as often but otherwise, or only log
otherwise. --format json gives the summary alone, which `vig summary` reads, jsonl gives it in the last line.

The exit status is 0 if nothing differs, 1 if something does, 2 if a file cannot be read.

Example: does a change matter, and on which devices of a fleet?
  vig diff old.json new.json
  vig diff old.json new.json devices/*.jsonl.gz --summary-only)";

int diff(const FleetDiffOptions& options, const Console& console, const Interruption& interruption) {
    if (std::ranges::count(options.devices, "-") +
            std::ranges::count(std::array{options.rules, options.newRules}, "-") >
        1) {
        return refuseArguments(console, kStandardInputTwice, "diff");
    }
    if (options.devices.empty()) {
        if (!options.format.ofDocuments || options.summaryOnly || !options.draws.numbers.empty()) {
            return refuseArguments(console, "jsonl, --summary-only and --draw are for files of event records", "diff");
        }
        return diffDocuments({options.rules, options.newRules, *options.format.ofDocuments, options.contextFile,
                              options.catalogueFile, options.states},
                             console, interruption);
    }
    if (options.format.ofDevices == ReportFormat::None || options.states || !options.catalogueFile.empty()) {
        return refuseArguments(
            console, "markdown, html, --states and --catalogue are for documents without event records", "diff");
    }
    return fleetDiff(options, console, interruption);
}

}  // namespace

void addDiff(CommandLine& commandLine, FleetDiffOptions& options) {
    Verb verb = commandLine.addVerb("diff", "Compares what two rule documents do, for all events or for recorded ones.",
                                    kFleetDiffHelp, diff, options);
    verb.argument("OLD", options.rules, Verb::Need::Required, "The rule document as it was");
    verb.argument("NEW", options.newRules, Verb::Need::Required, "The rule document that takes its place");
    verb.choice("--format", options.format,
                {{"text", {DiffFormat::Text, ReportFormat::Text}},
                 {"json", {DiffFormat::Json, ReportFormat::Json}},
                 {"jsonl", {std::nullopt, ReportFormat::Jsonl}},
                 {"markdown", {DiffFormat::Markdown, ReportFormat::None}},
                 {"html", {DiffFormat::Html, ReportFormat::None}}},
                "text for people, json for programs, and for a summary alone; jsonl, with EVENTS, for each device; "
                "without, markdown for a comment of a review, and html for a page to step through what shows it");
    verb.flag("--states", options.states, "The names of states count, too; without EVENTS");
    addCatalogueFile(verb, options.catalogueFile);
    addSurroundings(verb, options, "; each device draws by the seed and its name");
    verb.argument("EVENTS", options.devices, Verb::Need::Optional,
                  "The event records, a file for each device; -, which is standard input, may be one");
    addJobs(verb, options.threads);
    verb.flag("--summary-only", options.summaryOnly, "Tells only what all devices do together");
}

}  // namespace Brenta::OS::VIG::Tool
