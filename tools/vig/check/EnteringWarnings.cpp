#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// Follows EnteringState transitions, depth first. One that leads to a state on the path closes a cycle.
class CycleSearch {
  public:
    CycleSearch(const StateGraph& machine, std::vector<Finding>& found)
        : graph(machine), found(found), depths(machine.names.size(), kUnseen) {}

    void searchFrom(std::size_t state) {
        if (depths[state] != kUnseen) {
            return;
        }
        enter(state);
        while (!path.empty()) {
            Step& step = path.back();
            const auto& outgoing = graph.outgoing[step.state];
            if (step.next == outgoing.size()) {
                depths[step.state] = kDone;
                path.pop_back();
                continue;
            }
            const Edge& edge = graph.edges[outgoing[step.next++]];
            if (isFollowed(edge)) {
                follow(edge);
            }
        }
    }

  private:
    static constexpr std::size_t kUnseen = static_cast<std::size_t>(-1);
    static constexpr std::size_t kDone = kUnseen - 1;

    struct Step {
        std::size_t state;
        std::size_t next;  // of its outgoing transitions
        bool isUncertain;
        std::size_t uncertainBefore;  // how many states on the path up to here are
    };

    void enter(std::size_t state) {
        const std::size_t before = path.empty() ? 0 : path.back().uncertainBefore + (path.back().isUncertain ? 1 : 0);
        depths[state] = path.size();
        path.push_back({state, 0, isUncertain(state), before});
    }

    void follow(const Edge& edge) {
        if (depths[edge.to] == kUnseen) {
            enter(edge.to);
        } else if (depths[edge.to] != kDone) {
            report(edge, std::span(path).subspan(depths[edge.to]));
        }
    }

    // Tells whether it depends on a filter where the machine goes from there. What comes after a transition without one
    // is shadowed.
    bool isUncertain(std::size_t state) const {
        return std::ranges::any_of(graph.outgoing[state], [&](std::size_t index) {
            return isFollowed(graph.edges[index]) && !graph.edges[index].logic.conditions.empty();
        });
    }

    static bool isFollowed(const Edge& edge) {
        return edge.transition->event == EventType::EnteringState && edge.canFire();
    }

    void report(const Edge& closing, std::span<const Step> cycle) {
        constexpr std::size_t kMostShown = 5;
        std::string states;
        for (const Step& step : cycle.first(std::min(cycle.size(), kMostShown))) {
            states += shownQuoted(graph.names[step.state]) + " to ";
        }
        states += (cycle.size() > kMostShown ? "… to " : "") + shownQuoted(graph.names[closing.to]);
        const bool endless = !cycle.back().isUncertain && cycle.back().uncertainBefore == cycle.front().uncertainBefore;
        warn(found, "endless-entering", closing.transition->place,
             "EnteringState transitions lead from " + states +
                 (endless ? ", without end" : ", unless filters say otherwise") + ": one event makes up to 1000 moves",
             "let one of them listen for another event");
        found.back().severity = endless ? Severity::Error : Severity::Warning;
    }

    const StateGraph& graph;
    std::vector<Finding>& found;
    std::vector<std::size_t> depths;  // on the path, of each state that is on it
    std::vector<Step> path;
};

}  // namespace

void appendEnteringWarnings(const StateGraph& graph, std::vector<Finding>& found) {
    CycleSearch search(graph, found);
    for (std::size_t state = 0; state < graph.names.size(); ++state) {
        if (graph.isReachable[state]) {
            search.searchFrom(state);
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
