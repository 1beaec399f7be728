#pragma once

#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/DocumentText.h"

namespace Brenta::OS::VIG::Tool {

// Appends an error for every mistake in the reader's report. REQUIRES: there is one.
void appendReaderErrors(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
