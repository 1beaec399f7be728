#include "tools/vig/trace/Highlights.h"

#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostOfEvent = 20;

}  // namespace

bool Highlights::has(const Step& step) {
    OfMachine& machine = machines[step.machine.index];
    if (step.fired()) {
        const TransitionModel& fired = *step.attempts.back().transition;
        if (fired.from != fired.to) {
            machine.nearest.clear();
        }
        machine.steps = machine.moving == step.event ? machine.steps + 1 : 1;
        machine.moving = step.event;
        return machine.steps <= kMostOfEvent;
    }
    bool isNearer = false;
    for (const Attempt& attempt : step.attempts) {
        isNearer = comesNearer(attempt, machine) || isNearer;
    }
    return isNearer || (step.raised && machine.moving == step.event && machine.steps <= kMostOfEvent);
}

bool Highlights::comesNearer(const Attempt& attempt, OfMachine& machine) {
    const Nearest now{attempt.comparisons.size() - 1, missOf(attempt.comparisons.back())};
    if (now.held == 0 && !now.distance) {
        return false;
    }
    const auto [found, isFirst] = machine.nearest.try_emplace(attempt.index, now);
    Nearest& before = found->second;
    const bool isNearer =
        isFirst || now.held > before.held ||
        (now.held == before.held && now.distance && (!before.distance || 2 * *now.distance < *before.distance));
    if (isNearer) {
        before = now;
    }
    return isNearer;
}

}  // namespace Brenta::OS::VIG::Tool
