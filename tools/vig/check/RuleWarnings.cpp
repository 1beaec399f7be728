#include "tools/vig/check/RuleWarnings.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "tools/vig/check/AttributeWarnings.h"
#include "tools/vig/check/EnteringWarnings.h"
#include "tools/vig/check/LogicWarnings.h"
#include "tools/vig/check/NulWarnings.h"
#include "tools/vig/check/NumberWarnings.h"
#include "tools/vig/check/ShadowWarnings.h"
#include "tools/vig/check/StateGraph.h"
#include "tools/vig/check/StateWarnings.h"

namespace Brenta::OS::VIG::Tool {

void appendWarnings(const ConfigModel& config, const Catalogue& catalogue, const VIGParserConfig& registry,
                    std::vector<Diagnostic>& found) {
    const auto before = static_cast<std::ptrdiff_t>(found.size());
    std::vector<FilterLogic> logics;
    logics.reserve(config.transitions.size());
    for (const TransitionModel& transition : config.transitions) {
        for (const FilterModel& filter : transition.filters) {
            appendNumberWarnings(filter, found);
        }
        appendNulWarnings(transition, found);
        appendAttributeWarnings(transition, catalogue, registry, found);
        logics.push_back(appendLogicWarnings(transition, registry, found));
    }
    StateGraph graph(config, std::move(logics));
    const std::vector<bool> reachable = graph.reachable();
    appendShadowWarnings(graph, found);
    appendEnteringWarnings(graph, reachable, found);
    appendStateWarnings(graph, reachable, catalogue, found);
    std::stable_sort(found.begin() + before, found.end(), [](const Diagnostic& left, const Diagnostic& right) {
        return left.place.begin < right.place.begin;
    });
}

}  // namespace Brenta::OS::VIG::Tool
