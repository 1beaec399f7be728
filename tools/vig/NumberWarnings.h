#pragma once

#include <vector>

#include "tools/vig/Diagnostic.h"
#include "tools/vig/RuleModel.h"

namespace tool {

// Warns of constants that the library reads as another number than is written.
void appendNumberWarnings(const FilterModel& filter, std::vector<Diagnostic>& found);

}  // namespace tool
