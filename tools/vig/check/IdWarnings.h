#pragma once

#include <vector>

#include "tools/vig/DocumentText.h"
#include "tools/vig/check/Diagnostic.h"

namespace tool {

// Appends a warning for every id that an earlier configuration has, or that loses a fraction. REQUIRES: the root is an
// object whose "configs" is an array.
void appendIdWarnings(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace tool
