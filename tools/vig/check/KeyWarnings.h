#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

// Appends a warning for every key that the library ignores, and at every key that a later one overwrites. What stands
// inside of an ignored value is not looked at. REQUIRES: the text of the document is JSON.
void appendKeyWarnings(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
