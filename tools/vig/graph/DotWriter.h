#pragma once

#include <string>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"

namespace Brenta::OS::VIG::Tool {

// The graphs in Graphviz' language, one beside the other. A state is a table with a row for each arrow, so that the
// order of precedence can be seen and no label gets lost among the lines. `replay` says what the traffic comes from and
// stands in the legend; empty without a replay.
std::string dotOf(const std::vector<RuleGraph>& graphs, const std::string& replay);

}  // namespace Brenta::OS::VIG::Tool
