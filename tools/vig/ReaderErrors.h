#pragma once

#include <vector>

#include "tools/vig/Diagnostic.h"
#include "tools/vig/DocumentText.h"

namespace tool {

// Appends an error for every mistake in the reader's report. REQUIRES: there is one.
void appendReaderErrors(const DocumentText& document, std::vector<Diagnostic>& found);

}  // namespace tool
