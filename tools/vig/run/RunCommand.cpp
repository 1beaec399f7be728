#include "tools/vig/run/RunCommand.h"

#include <optional>

#include "tools/vig/run/Replay.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Reports what the machines decide, as far as the options ask for it.
class Explanations final : public Trace {
  public:
    Explanations(const RunOptions& options, Report& report) : report(report), withSteps(options.explain) {
        if (!options.whyNot.empty()) {
            whyNot.emplace(options.whyNot);
        }
    }

    std::string problem() const { return whyNot ? whyNot->problem() : std::string(); }

    void loaded(const DocumentModel& document) override {
        if (whyNot) {
            whyNot->loaded(document);
        }
    }

    void step(const Step& step) override {
        if (withSteps) {
            report.explain(step);
        }
        if (whyNot) {
            whyNot->step(step);
        }
    }

    void end() {
        if (whyNot) {
            report.whyNot(*whyNot);
        }
    }

  private:
    Report& report;
    const bool withSteps;
    std::optional<WhyNot> whyNot;
};

}  // namespace

int run(const RunOptions& options, const Console& console, const Interruption& interruption) {
    RuleRun rules(options, options.format, console, interruption);
    Explanations explanations(options, rules.reporter());
    if (options.explain || !options.whyNot.empty()) {
        rules.observe(explanations);
    }
    Replay replay(options.events, console, interruption);
    if (!replay.problem().empty()) {
        console.say(replay.problem());
        return kExitUnusable;
    }
    if (const auto status = rules.load(RuleSession::Changes::Ignore)) {
        return rules.abandon(*status);
    }
    rules.session().start();
    if (const std::string problem = explanations.problem(); !problem.empty()) {
        rules.complainAfterOutput(options.rules + ": error: " + problem);
        return kExitUnusable;
    }
    replay.play([&machines = rules.session().machines()](const EventRecord& record) { machines.offer(record); },
                rules.output(), console.err);
    if (!replay.problem().empty()) {
        rules.complainAfterOutput(replay.problem());
        return kExitUnusable;
    }
    explanations.end();
    return rules.finish(interruption.requested() ? kExitInterrupted : kExitDone, std::nullopt);
}

}  // namespace Brenta::OS::VIG::Tool
