#pragma once

#include <vector>

#include "tools/vig/DocumentText.h"
#include "tools/vig/check/Diagnostic.h"

namespace tool {

// Appends an error for every mistake in the reader's report. REQUIRES: there is one.
void appendReaderErrors(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace tool
