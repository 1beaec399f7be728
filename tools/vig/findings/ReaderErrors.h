#pragma once

#include <vector>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/findings/Findings.h"

namespace Brenta::OS::VIG::Tool {

// Returns an error for every mistake in the reader's report. REQUIRES: the text of the document is not JSON.
std::vector<Finding> readerErrors(const DocumentText& document);

}  // namespace Brenta::OS::VIG::Tool
