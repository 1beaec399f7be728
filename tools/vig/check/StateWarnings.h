#pragma once

#include <vector>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/check/StateGraph.h"

namespace Brenta::OS::VIG::Tool {

// Warns of states that nothing leads to or that cannot be left, of triggers that fire at every event, and of
// transitions on timeouts. REQUIRES: shadowed transitions are marked.
void appendStateWarnings(const StateGraph& graph, const std::vector<bool>& reachable, const Catalogue& catalogue,
                         std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
