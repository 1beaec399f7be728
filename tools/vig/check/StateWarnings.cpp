#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// Returns the states that can be reached and not be left: one of them may be a misspelt name. Many are no mistake of
// spelling.
std::vector<std::string_view> strayTargets(const StateGraph& graph) {
    constexpr std::size_t kMost = 16;
    std::vector<std::string_view> names;
    for (std::size_t state = 0; state < graph.names.size() && names.size() < kMost; ++state) {
        if (graph.isReachable[state] && state != StateGraph::END && graph.outgoing[state].empty()) {
            names.push_back(graph.names[state]);
        }
    }
    return names;
}

// Each state is named once, at its first transition.
void appendUnreachable(const StateGraph& graph, std::vector<Finding>& found) {
    std::vector<bool> reported = graph.isReachable;
    // It is there without being used.
    reported[StateGraph::END] = reported[StateGraph::END] || graph.outgoing[StateGraph::END].empty();
    const auto candidates = strayTargets(graph);
    for (const Edge& edge : graph.edges) {
        for (const auto& [state, member] : {std::pair(edge.from, "from_state"), std::pair(edge.to, "to_state")}) {
            if (!reported[state]) {
                reported[state] = true;
                const std::string hint = asHint(suggestion(graph.names[state], candidates));
                warn(found, "unreachable-state", placeOf(*edge.transition, member),
                     "no chain of transitions leads from \"start\" to " + shownQuoted(graph.names[state]),
                     hint.empty() ? "lead a transition there, or leave it out" : hint);
            }
        }
    }
}

// Each state is named once, at the first transition that leads there.
void appendNoWayOut(const StateGraph& graph, std::vector<Finding>& found) {
    std::vector<bool> accepted(graph.names.size());  // something can come of being there, or there is a warning
    accepted[StateGraph::END] = true;
    for (const Edge& edge : graph.edges) {
        accepted[edge.from] = accepted[edge.from] || !edge.isLoop() || !edge.transition->actions.empty();
    }
    for (const Edge& edge : graph.edges) {
        if (graph.isReachable[edge.from] && !accepted[edge.to]) {
            accepted[edge.to] = true;
            warn(found, "no-way-out", placeOf(*edge.transition, "to_state"),
                 "once in " + shownQuoted(graph.names[edge.to]) + ", the machine does nothing any more",
                 "if that is meant, call the state \"end\"");
        }
    }
}

// A draw that every number fulfils limits nothing.
bool isSampled(const Edge& edge) {
    return std::ranges::any_of(edge.logic.conditions, [](const FilterModel* each) { return draws(*each); });
}

// Tells whether entering the state can lead on to another one at once.
bool isLeftAtOnce(const StateGraph& graph, std::size_t state) {
    return std::ranges::any_of(graph.outgoing[state], [&](std::size_t index) {
        const Edge& edge = graph.edges[index];
        return edge.transition->event == EventType::EnteringState && !edge.isLoop() && edge.canFire();
    });
}

void appendStorms(const StateGraph& graph, std::size_t state, const Catalogue& catalogue, std::vector<Finding>& found) {
    const bool staysThere = !isLeftAtOnce(graph, state);
    for (const std::size_t index : graph.outgoing[state]) {
        const Edge& edge = graph.edges[index];
        const TransitionModel& transition = *edge.transition;
        if (!staysThere || !edge.isLoop() || !edge.canFire() || isSampled(edge)) {
            continue;
        }
        for (const ActionModel& action : transition.actions) {
            if (startsCollection(action.key) && missingFor(action, transition.event, catalogue).empty()) {
                warn(found, "trigger-storm", action.place,
                     shownQuoted(action.name) + " asks for a collection at every " +
                         std::string(nameOf(transition.event)) +
                         " event that fulfils the filters, and the machine stays in " + shownQuoted(transition.from),
                     "move to another state, or add the filter PseudoRandomDouble() < 0.1");
            }
        }
    }
}

}  // namespace

void appendStateWarnings(const StateGraph& graph, const Catalogue& catalogue, std::vector<Finding>& found) {
    appendUnreachable(graph, found);
    appendNoWayOut(graph, found);
    for (std::size_t state = 0; state < graph.names.size(); ++state) {
        appendStorms(graph, state, catalogue, found);
    }
    for (const Edge& edge : graph.edges) {
        if (edge.transition->event == EventType::Timeout) {
            warn(found, "unused-timeout", placeOf(*edge.transition, "event"),
                 "nothing arms a timeout by itself: only a service that does so sends the event",
                 "ask the owner of the service");
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
