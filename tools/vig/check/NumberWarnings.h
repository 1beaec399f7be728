#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// Warns of constants that the library reads as another number than is written.
void appendNumberWarnings(const FilterModel& filter, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
