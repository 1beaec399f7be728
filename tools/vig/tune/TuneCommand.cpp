#include "tools/vig/tune/TuneCommand.h"

#include <algorithm>

#include "tools/vig/commandline/CommandLine.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/fleet/Jobs.h"
#include "tools/vig/tune/FleetReading.h"
#include "tools/vig/tune/Search.h"
#include "tools/vig/tune/TuneWriters.h"
#include "tools/vig/tune/TunedConstant.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr int kExitNone = 1;

constexpr const char* kHelp = R"(PATH is that of a number in a filter, as check and --why-not print paths:
  configs[0].payload.data.transitions[0].filters[1].operand2

Each FILE is the recording of a device, as `vig run` takes them; all are read several times. A device fires if the
machine that has the number asks for a collection on it at least once. The answer is the threshold with the largest
share, or rate, that is not above the target, and of equal ones the roundest; it was replayed, as all of the table were.
A threshold gives the target if devices fire and the 95 % interval of what they do has the target in it: of Wilson for
a share, for a rate by how much devices differ. The document is left as it is.

Exit status: 0 a threshold gives the target, 1 none of those replayed does, 2 the document or a file cannot be used.

Example: with which threshold does one device of a thousand fire? And with which one are there 3 triggers
a device and day?
  vig tune rules.json 'configs[0].payload.data.transitions[0].filters[0].operand2' devices/*.gz --target 0.1%
  vig tune rules.json 'configs[0].payload.data.transitions[0].filters[0].operand2' devices/*.gz --target 3/day)";

}  // namespace

int tune(const TuneOptions& options, const Console& console, const Interruption& interruption) {
    if (!options.target) {
        return refuseArguments(console, "--target is required", "tune");
    }
    if (std::ranges::count(options.devices, "-") > 0) {
        return refuseArguments(console, "recordings are read more than once: standard input cannot be", "tune");
    }
    RuleRun rules(options, {ReportFormat::None, false}, console, interruption);
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        const int reported = rules.abandon(*status);
        return reported == kExitRefused ? kExitUnusable : reported;
    }
    std::string problem;
    const auto constant = findConstant(rules.session().document(), options.path, problem);
    if (!constant) {
        console.say(options.rules + ": error: " + problem);
        return kExitUnusable;
    }
    const TunePlan plan{rules.session().document(),
                        *constant,
                        libraryRegistry(),
                        rules.session().contextAttributes(),
                        options.draws,
                        options.devices,
                        options.threads,
                        console,
                        interruption};
    const Tuning tuning = searchThreshold(plan, *options.target);
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    for (const auto& [device, said] : tuning.problems) {
        console.say(said);
    }
    if (!tuning.failure.empty()) {
        console.complain(tuning.failure);
        return kExitUnusable;
    }
    const TuneReport report{plan, *options.target, options.targetText, tuning};
    rules.output().write(options.format == TuneFormat::Text ? textOf(report) : jsonOf(report));
    const int found = report.answer() ? kExitDone : kExitNone;
    return console.finish(rules.output(), tuning.problems.empty() ? found : kExitUnusable);
}

void addTune(CommandLine& commandLine, TuneOptions& options) {
    Verb verb =
        commandLine.addVerb("tune", "Finds the threshold with which a share of a fleet fires.", kHelp, tune, options);
    addRules(verb, options);
    verb.argument("PATH", options.path, Verb::Need::Required, "The number in the document");
    verb.argument("FILE", options.devices, Verb::Need::Required, "The event records, a file for each device");
    verb.option("--target", "TARGET",
                "A share of the devices, such as 0.1%, or triggers a device and day, such as 3/day",
                [&options](const std::string& text) {
                    options.targetText = text;
                    options.target = TuneTarget::of(text);
                    return options.target ? "" : "expected a share such as 0.1% or a rate such as 3/day, got " + text;
                });
    verb.choice("--format", options.format, {{"text", TuneFormat::Text}, {"json", TuneFormat::Json}},
                "text for people, json for programs");
    addSurroundings(verb, options, "; each device draws by the seed and its name");
    addJobs(verb, options.threads);
}

}  // namespace Brenta::OS::VIG::Tool
