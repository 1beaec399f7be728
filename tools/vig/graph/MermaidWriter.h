#pragma once

#include <string>
#include <vector>

#include "tools/vig/graph/RuleGraph.h"

namespace Brenta::OS::VIG::Tool {

// The graphs as one Mermaid state diagram, for a README. Its lines have no widths and colours: a replay shows as
// counts.
std::string mermaidOf(const std::vector<RuleGraph>& graphs);

}  // namespace Brenta::OS::VIG::Tool
