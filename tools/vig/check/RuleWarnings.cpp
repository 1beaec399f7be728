#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Brenta::OS::VIG::Tool {

void appendRuleWarnings(const ConfigModel& config, const Catalogue& catalogue, const VIGParserConfig& registry,
                        std::vector<Finding>& found) {
    const auto before = static_cast<std::ptrdiff_t>(found.size());
    std::vector<FilterLogic> logics;
    logics.reserve(config.transitions.size());
    for (const TransitionModel& transition : config.transitions) {
        for (const FilterModel& filter : transition.filters) {
            appendNumberWarnings(filter, found);
        }
        appendNulWarnings(transition, found);
        appendAttributeWarnings(transition, catalogue, registry, found);
        logics.push_back(judgeFilters(transition, registry, found));
    }
    StateGraph graph(config, std::move(logics));
    appendShadowWarnings(graph, found);
    appendEnteringWarnings(graph, found);
    appendStateWarnings(graph, catalogue, found);
    std::ranges::stable_sort(found.begin() + before, found.end(), {},
                             [](const Finding& each) { return each.place.begin; });
}

}  // namespace Brenta::OS::VIG::Tool
