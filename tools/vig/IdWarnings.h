#pragma once

#include <vector>

#include "tools/vig/Diagnostic.h"
#include "tools/vig/DocumentText.h"

namespace tool {

// Appends a warning for every id that an earlier configuration has, or that loses a fraction. REQUIRES: the root is an
// object whose "configs" is an array.
void appendIdWarnings(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace tool
