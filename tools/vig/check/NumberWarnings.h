#pragma once

#include <vector>

#include "tools/vig/RuleModel.h"
#include "tools/vig/check/Diagnostic.h"

namespace tool {

// Warns of constants that the library reads as another number than is written.
void appendNumberWarnings(const FilterModel& filter, std::vector<Diagnostic>& found);

}  // namespace tool
