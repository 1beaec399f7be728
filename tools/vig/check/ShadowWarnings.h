#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/check/StateGraph.h"

namespace Brenta::OS::VIG::Tool {

// Warns of transitions that never fire because an earlier one always does instead, and marks them.
void appendShadowWarnings(StateGraph& graph, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
