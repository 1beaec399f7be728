#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>

namespace Brenta::OS::VIG::Tool {

void appendRuleWarnings(Judged& machine, std::vector<Finding>& found) {
    const auto before = static_cast<std::ptrdiff_t>(found.size());
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        const TransitionModel& transition = machine.config.transitions[index];
        const std::size_t since = found.size();
        for (const FilterModel& filter : transition.filters) {
            appendNumberWarnings(filter, found);
        }
        appendNulWarnings(transition, found);
        appendAttributeWarnings(transition, machine.surroundings.catalogue, machine.surroundings.registry, found);
        appendTypeWarnings(transition, machine.surroundings.catalogue, machine.surroundings.registry, since, found);
        appendInvisibleWarnings(transition, since, found);
        machine.logics.push_back(judgeFilters(machine, index, since, found));
        appendDrawWarnings(transition, found);
    }
    appendUnitWarnings(machine.config, machine.surroundings.catalogue, found);
    appendShadowWarnings(machine, found);
    appendEnteringWarnings(machine, found);
    appendStateWarnings(machine, found);
    appendStormWarnings(machine, found);
    appendFallThroughWarnings(machine, found);
    appendProcessWarnings(machine, found);
    appendSamplingWarnings(machine, found);
    appendActionWarnings(machine.config, found);
    std::ranges::stable_sort(found.begin() + before, found.end(), {},
                             [](const Finding& each) { return each.place.begin; });
}

}  // namespace Brenta::OS::VIG::Tool
