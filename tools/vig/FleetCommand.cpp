#include "tools/vig/FleetCommand.h"

#include "tools/vig/Registry.h"
#include "tools/vig/fleet/DeviceRun.h"
#include "tools/vig/fleet/FleetRun.h"
#include "tools/vig/fleet/FleetSummaryText.h"

namespace tool {

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
    RuleOptions lines = options;
    lines.format = options.summaryOnly ? ReportFormat::None : options.format;
    RuleRun rules(lines, console, interruption);
    // The machines of the delivery stay idle: each device has its own.
    if (const auto status = rules.receive(RuleSession::Changes::Ignore)) {
        return *status;
    }
    const TracedDocument document(options.rules, rules.session().documentText());
    const FleetPlan plan{document,     libraryRegistry(), rules.session().contextAttributes(),
                         options.seed, lines.format,      console.wantsColours(),
                         console,      interruption};
    const FleetSummary summary = runFleet(plan, options.devices, options.threads, rules.output());
    rules.output().write(summaryOf(summary, options));
    return rules.abandon(statusOf(summary, interruption));
}

}  // namespace tool
