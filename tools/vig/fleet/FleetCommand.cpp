#include "tools/vig/fleet/FleetCommand.h"

#include "tools/vig/document/Registry.h"
#include "tools/vig/fleet/DeviceRun.h"
#include "tools/vig/fleet/FleetRun.h"
#include "tools/vig/fleet/FleetSummaryText.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Wants of the machines that are traced nothing but their document.
class DocumentKeeper final : public Trace {
  public:
    // REQUIRES: there is one. It lives as long as the session.
    const TracedDocument& get() const { return *latest; }

    void loaded(const TracedDocument& document) override { latest = &document; }
    void step(const Step& /*step*/) override {}

  private:
    const TracedDocument* latest = nullptr;
};

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
    DocumentKeeper document;
    RuleRun rules(lines, console, interruption);
    rules.observe(document);
    // The machines of the delivery stay idle: each device has its own.
    if (const auto status = rules.receive(RuleSession::Changes::Ignore)) {
        return *status;
    }
    const FleetPlan plan{document.get(), libraryRegistry(), rules.session().contextAttributes(),
                         options.seed,   lines.format,      console.wantsColours(),
                         console,        interruption};
    const FleetSummary summary = runFleet(plan, options.devices, options.threads, rules.output());
    rules.output().write(summaryOf(summary, options));
    return rules.abandon(statusOf(summary, interruption));
}

}  // namespace Brenta::OS::VIG::Tool
