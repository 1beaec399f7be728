#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// The pictures of a machine have these texts in common, whatever their format. They are printable, and cut where they
// would be too long for a picture; none is escaped for the format.

// Returns the text with at most `most` characters, the last of them "…" if it was cut.
std::string pictureText(std::string_view text, std::size_t most);

// The label can be seen even if the state's name is empty or has only spaces.
std::string labelOf(const GraphState& state);

// Returns "2", or "4…41" for several transitions.
std::string orderOf(const GraphArrow& arrow);

// Each condition is a line.
std::vector<std::string> conditionLinesOf(const GraphArrow& arrow);

// Returns a line like "→ TriggerVelora" for each action.
std::vector<std::string> actionLinesOf(const GraphArrow& arrow);

// Returns "3 of 120 tried"; nothing without a replay.
std::string trafficLineOf(const GraphArrow& arrow);

// Returns a line like "⚠ never-true" for each name.
std::vector<std::string> markLinesOf(const std::vector<GraphMark>& marks);

// All of the marks' messages share one line.
std::string messagesOf(const std::vector<GraphMark>& marks);

// Draws the graphs in Graphviz' language, one beside the other. A state is a table with a row for each arrow, so that
// the order of precedence can be seen and no label gets lost among the lines. `replay` says what the traffic comes from
// and stands in the legend; empty without a replay.
std::string dotOf(const std::vector<RuleGraph>& graphs, const std::string& replay);

// Draws the graphs as one Mermaid state diagram, for a README. Its lines have no widths and colours: a replay shows as
// counts.
std::string mermaidOf(const std::vector<RuleGraph>& graphs);

// It tells what came of a run of Graphviz' program `dot`.
struct Rendering {
    enum class Status { Done, Missing, Failed, Interrupted };

    Status status;
    std::string image;
    std::string messages;  // what the program had to say, or why it could not be run
};

// Renders a graph; `format` is one that the program knows, such as "svg". The program is looked for as a shell would,
// and is ended when the interruption is requested.
Rendering renderGraph(std::string_view dot, const std::string& format, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
