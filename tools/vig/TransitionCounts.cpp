#include "tools/vig/TransitionCounts.h"

namespace tool {

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
    return replay(options, console, interruption, &counts);
}

}  // namespace tool
