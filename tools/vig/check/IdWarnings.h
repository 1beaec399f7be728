#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

// Appends a warning for every id that an earlier configuration has, or that loses a fraction. REQUIRES: the root is an
// object whose "configs" is an array.
void appendIdWarnings(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
