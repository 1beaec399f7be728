#include "tools/vig/EnteringWarnings.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "tools/vig/Text.h"
#include "tools/vig/Warn.h"

namespace tool {

using Brenta::OS::RulesEngine::EventType;

namespace {

// Follows EnteringState transitions, depth first. One that leads to a state on the path closes a cycle.
class CycleSearch {
  public:
    CycleSearch(const StateGraph& machine, std::vector<Diagnostic>& results)
        : graph(machine), found(results), depths(machine.names.size(), kUnseen) {}

    void searchFrom(std::size_t state) {
        if (depths[state] != kUnseen) {
            return;
        }
        enter(state, 0);
        while (!path.empty()) {
            Step& step = path.back();
            const auto& outgoing = graph.outgoing[step.state];
            if (step.next == outgoing.size()) {
                depths[step.state] = kDone;
                path.pop_back();
                continue;
            }
            const Edge& edge = graph.edges[outgoing[step.next++]];
            if (edge.transition->event == EventType::EnteringState && edge.canFire()) {
                follow(edge);
            }
        }
    }

  private:
    static constexpr std::size_t kUnseen = static_cast<std::size_t>(-1);
    static constexpr std::size_t kDone = kUnseen - 1;

    struct Step {
        std::size_t state;
        std::size_t next;         // of its outgoing transitions
        std::size_t conditional;  // how many transitions on the path up to here have filters
    };

    void enter(std::size_t state, std::size_t conditional) {
        depths[state] = path.size();
        path.push_back({state, 0, conditional});
    }

    void follow(const Edge& edge) {
        const std::size_t conditional = path.back().conditional + (edge.logic.conditions.empty() ? 0 : 1);
        if (depths[edge.to] == kUnseen) {
            enter(edge.to, conditional);
        } else if (depths[edge.to] != kDone) {
            const std::span<const Step> cycle = std::span(path).subspan(depths[edge.to]);
            report(edge, cycle, conditional == cycle.front().conditional);
        }
    }

    // A transition without a filter shadows all that come after it, so that nothing leads out of an endless cycle
    // unless it comes before in a state.
    bool isFirstEverywhere(std::span<const Step> cycle) const {
        return std::ranges::all_of(cycle, [&](const Step& step) {
            const auto isBefore = [&](std::size_t index) {
                const Edge& edge = graph.edges[index];
                return edge.transition->event == EventType::EnteringState && edge.canFire() &&
                       !edge.logic.conditions.empty();
            };
            return std::ranges::none_of(graph.outgoing[step.state], isBefore);
        });
    }

    void report(const Edge& closing, std::span<const Step> cycle, bool unfiltered) {
        constexpr std::size_t kMostShown = 5;
        std::string states;
        for (const Step& step : cycle.first(std::min(cycle.size(), kMostShown))) {
            states += quoted(graph.names[step.state]) + " to ";
        }
        states += (cycle.size() > kMostShown ? "… to " : "") + quoted(graph.names[closing.to]);
        const bool endless = unfiltered && isFirstEverywhere(cycle);
        warn(found, "endless-entering", closing.transition->place,
             "EnteringState transitions lead from " + states +
                 (endless ? ", without end" : ", as long as filters hold") + ": one event makes up to 1000 moves",
             "let one of them listen for another event");
        found.back().severity = endless ? Severity::Error : Severity::Warning;
    }

    const StateGraph& graph;
    std::vector<Diagnostic>& found;
    std::vector<std::size_t> depths;  // on the path, of each state that is on it
    std::vector<Step> path;
};

}  // namespace

void appendEnteringWarnings(const StateGraph& graph, const std::vector<bool>& reachable,
                            std::vector<Diagnostic>& found) {
    CycleSearch search(graph, found);
    for (std::size_t state = 0; state < reachable.size(); ++state) {
        if (reachable[state]) {
            search.searchFrom(state);
        }
    }
}

}  // namespace tool
