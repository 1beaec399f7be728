#include "tools/vig/graph/TransitionCounts.h"

#include "tools/vig/run/Replay.h"

namespace Brenta::OS::VIG::Tool {

void TransitionCounts::loaded(const TracedDocument& document) {
    counts.clear();
    for (const ConfigModel& config : document.configs) {
        counts.emplace_back(config.transitions.size());
    }
}

void TransitionCounts::step(const Step& step) {
    for (const Attempt& attempt : step.attempts) {
        Count& count = counts[step.machine.index][attempt.index];
        ++count.tried;
        count.fired += attempt.fired ? 1 : 0;
    }
}

int countTransitions(RunOptions options, const Console& console, const Interruption& interruption,
                     TransitionCounts& counts) {
    options.format = ReportFormat::None;
    Replay replay(options, console, interruption);
    replay.ruleRun().observe(counts);
    if (const auto status = replay.begin()) {
        return *status;
    }
    const auto status = replay.offerAll();
    return status ? *status : replay.finish();
}

}  // namespace Brenta::OS::VIG::Tool
