#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// Warns of a NUL in what the library accepts with it: an operator, which it reads up to there, the names of states and
// attributes, and texts that are compared.
void appendNulWarnings(const TransitionModel& transition, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
