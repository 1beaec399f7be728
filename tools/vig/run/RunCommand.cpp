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
    Explanations(const RunOptions& options, Report& target) : report(target), withSteps(options.explain) {
        if (!options.whyNot.empty()) {
            whyNot.emplace(options.whyNot);
        }
    }

    std::string problem() const { return whyNot ? whyNot->problem() : std::string(); }

    void loaded(const TracedDocument& document) override {
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
    Replay replay(options, console, interruption);
    Explanations explanations(options, replay.ruleRun().reporter());
    if (options.explain || !options.whyNot.empty()) {
        replay.ruleRun().observe(explanations);
    }
    if (const auto status = replay.begin()) {
        return *status;
    }
    if (const std::string problem = explanations.problem(); !problem.empty()) {
        replay.ruleRun().complainAfterOutput(options.rules + ": error: " + problem);
        return kExitUnusable;
    }
    if (const auto status = replay.offerAll()) {
        return *status;
    }
    explanations.end();
    return replay.finish();
}

}  // namespace Brenta::OS::VIG::Tool
