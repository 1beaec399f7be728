#include "tools/vig/fleet/FleetCommand.h"

#include "tools/vig/document/Registry.h"
#include "tools/vig/fleet/DeviceRun.h"
#include "tools/vig/fleet/FleetRun.h"
#include "tools/vig/fleet/FleetSummaryText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string summaryOf(const FleetSummary& summary, const FleetOptions& options) {
    switch (options.format) {
        case ReportFormat::Text:
            return (options.summaryOnly ? "" : "\n") + textOf(summary);
        case ReportFormat::Jsonl:
            return jsonOf(summary, R"("type":"fleet",)");
        case ReportFormat::Json:
            return jsonOf(summary, "");
        case ReportFormat::None:
            break;
    }
    return {};
}

int statusOf(const FleetSummary& summary, const Interruption& interruption) {
    if (interruption.requested()) {
        return kExitInterrupted;
    }
    return summary.failed > 0 ? kExitUnusable : kExitDone;
}

}  // namespace

int fleet(const FleetOptions& options, const Console& console, const Interruption& interruption) {
    RunOptions ofDevice = options;
    ofDevice.format = options.summaryOnly ? ReportFormat::None : options.format;
    RuleRun rules(options, ofDevice.format, console, interruption);
    // The machines of the delivery stay idle: each device has its own.
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    const FleetPlan plan{rules.session().document(),
                         libraryRegistry(),
                         rules.session().contextAttributes(),
                         ofDevice,
                         console,
                         interruption};
    const FleetSummary summary = runFleet(plan, options.devices, options.threads, rules.output());
    rules.output().write(summaryOf(summary, options));
    return rules.abandon(statusOf(summary, interruption));
}

}  // namespace Brenta::OS::VIG::Tool
