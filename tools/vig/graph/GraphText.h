#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"

namespace Brenta::OS::VIG::Tool {

// What the pictures of a machine say, whatever their format. All of it is printable, and cut where it would be too
// long for a picture; none of it is escaped for the format.

// The text with at most `most` characters, the last of them "…" if it was cut.
std::string pictureText(std::string_view text, std::size_t most);

// Also for a name that nobody could see: empty or of spaces.
std::string labelOf(const GraphState& state);

// "2", or "4…41" for several transitions.
std::string orderOf(const GraphArrow& arrow);

// The conditions, a line each.
std::vector<std::string> conditionLinesOf(const GraphArrow& arrow);

// "→ TriggerVelora", a line each.
std::vector<std::string> actionLinesOf(const GraphArrow& arrow);

// "3 of 120 tried"; empty without a replay.
std::string trafficLineOf(const GraphArrow& arrow);

// "⚠ never-true", a line for each name.
std::vector<std::string> markLinesOf(const std::vector<GraphMark>& marks);

// All of the marks' messages, on one line.
std::string messagesOf(const std::vector<GraphMark>& marks);

}  // namespace Brenta::OS::VIG::Tool
