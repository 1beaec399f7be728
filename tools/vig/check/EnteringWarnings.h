#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/check/StateGraph.h"

namespace Brenta::OS::VIG::Tool {

// Warns of cycles of EnteringState transitions; one that nothing can stop is an error. REQUIRES: shadowed transitions
// are marked.
void appendEnteringWarnings(const StateGraph& graph, const std::vector<bool>& reachable,
                            std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
