#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/findings/Findings.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// The graph is a machine of a rule document as a picture shows it. All texts are as the document has them: whoever
// draws cuts and escapes them.

// It names something that `vig check` finds wrong with what is marked.
struct GraphMark {
    std::string name;
    std::string message;
};

// It tells what a replay made of one or several transitions.
struct Traffic {
    std::uint64_t tried = 0;  // an event came for which it listens, and no earlier transition fired
    std::uint64_t fired = 0;
};

enum class TrafficKind { Unknown, NeverTried, NeverFired, Fired };

TrafficKind kindOf(const std::optional<Traffic>& traffic);

// It stands for a transition, or for several that lead from the same state to the same one.
struct GraphArrow {
    std::size_t first = 0;  // in the order of precedence of its state, counting from 1
    std::size_t last = 0;   // differs if it stands for several
    std::string title;      // the event's name, or how many transitions it stands for
    std::vector<std::string> conditions;
    std::vector<std::string> actions;
    std::size_t target = 0;          // an index into RuleGraph::states
    std::optional<Traffic> traffic;  // empty without a replay
    std::vector<GraphMark> marks;
};

struct GraphState {
    std::string name;
    bool reachable = false;  // whether a chain of transitions leads there from "start"
    std::vector<GraphArrow> arrows;
    std::vector<GraphMark> marks;
};

struct RuleGraph {
    std::int64_t id;                 // the configuration's
    std::string side;                // of a comparison, or empty
    std::vector<GraphState> states;  // "start" first, then those that the document names, in its order
    std::vector<GraphMark> marks;    // of the configuration as a whole
};

// At most so many arrows of each kind of traffic lead from one state to another.
inline constexpr std::size_t kMostParallelArrows = 4;

// Makes a graph of each configuration. A finding marks the transition that its path lies in; the state, if the path
// ends with "from_state" or "to_state"; else the configuration. `traffic` is empty without a replay, or has an element
// for each transition of each configuration.
std::vector<RuleGraph> graphsOf(const std::vector<ConfigModel>& configs, const std::vector<Finding>& findings,
                                const std::vector<std::vector<Traffic>>& traffic);

// Does the same with all that `vig check` finds in the document. Once it is interrupted, what is returned means
// nothing.
std::vector<RuleGraph> checkedGraphsOf(const DocumentModel& document, const std::vector<std::vector<Traffic>>& traffic,
                                       const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
