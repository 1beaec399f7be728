#include "tools/vig/test/Coverage.h"

#include <fmt/format.h>

#include <string_view>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

Coverage::Share Coverage::share(bool ofTransitions) const {
    Share share;
    for (const Goal& goal : goals) {
        const bool counts = goal.ofTransition == ofTransitions;
        share.all += counts ? 1 : 0;
        share.reached += counts && goal.isReached ? 1 : 0;
    }
    return share;
}

const Coverage::Goal& Coverage::goalOf(const Target& target) const {
    const std::size_t first = firstGoals[target.machine][target.transition];
    return goals[target.filter ? first + 2 * *target.filter + (target.outcome ? 1 : 2) : first];
}

double Coverage::percent() const {
    const std::size_t reached = transitions().reached + filterOutcomes().reached;
    return goals.empty() ? 100.0 : 100.0 * static_cast<double>(reached) / static_cast<double>(goals.size());
}

std::vector<std::string> Coverage::gaps() const {
    std::vector<std::string> lines;
    for (const Goal& goal : goals) {
        if (!goal.isReached) {
            lines.push_back(goal.gap);
        }
    }
    return lines;
}

void Coverage::add(const DocumentModel& document, const Place& place, std::string_view what, const std::string& which,
                   bool ofTransition) {
    const auto position = document.text.source().positionOf(place.begin);
    goals.push_back(
        {fmt::format("{}:{}:{}: never {}: {} [{}]", name, position.line, position.column, what, which, place.path),
         ofTransition});
}

void Coverage::loaded(const DocumentModel& document) {
    if (std::exchange(wasLoaded, true)) {
        return;
    }
    for (const ConfigModel& config : document.configs) {
        auto& firstOfConfig = firstGoals.emplace_back();
        for (const TransitionModel& each : config.transitions) {
            firstOfConfig.push_back(goals.size());
            add(document, each.place, "fired",
                fmt::format("{} -> {} on {}", shownName(each.from), shownName(each.to), nameOf(each.event)), true);
            for (const FilterModel& filter : each.filters) {
                for (const char* const outcome : {"true", "false"}) {
                    add(document, filter.place, outcome, shownCondition(filter), false);
                }
            }
        }
    }
}

void Coverage::step(const Step& step) {
    for (const Attempt& attempt : step.attempts) {
        std::size_t goal = firstGoals[step.machine.index][attempt.index];
        goals[goal].isReached |= attempt.fired;
        for (const Comparison& each : attempt.comparisons) {
            goals[goal + (each.verdict ? 1 : 2)].isReached = true;
            goal += 2;
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
