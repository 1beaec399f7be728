#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It says what judging the filters of a transition has come to: that holds whatever the events.
struct FilterLogic {
    bool neverHolds = false;
    std::vector<const FilterModel*> conditions = {};  // those that are not always true
};

// It is a transition of a machine, with its states as numbers.
struct Edge {
    const TransitionModel* transition;
    std::size_t from;
    std::size_t to;
    FilterLogic logic;
    bool isShadowed = false;

    bool canFire() const { return !logic.neverHolds && !isShadowed; }
    bool isLoop() const { return from == to; }
};

// It has the states and transitions of a machine, and refers to the model that it was built of.
struct StateGraph {
    static constexpr std::size_t START = 0;
    static constexpr std::size_t END = 1;

    // `logics` are those of the transitions, in their order.
    StateGraph(const ConfigModel& config, std::vector<FilterLogic> logics);

    std::vector<std::string_view> names;             // of the states
    std::vector<Edge> edges;                         // in document order
    std::vector<std::vector<std::size_t>> outgoing;  // of each state, the edges in document order

    // Tells of each state whether a chain of transitions leads there from "start". It does not matter if they can fire:
    // where they cannot, there is a warning of them already.
    std::vector<bool> isReachable;
};

}  // namespace Brenta::OS::VIG::Tool
