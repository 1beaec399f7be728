#pragma once

#include <cstddef>
#include <vector>

#include "tools/vig/document/DocumentText.h"
#include "tools/vig/findings/Findings.h"

namespace Brenta::OS::VIG::Tool {

inline constexpr std::size_t kMostShownOfReport = 200;  // of the library's reader

// Returns an error for every mistake because of which the text is not JSON. REQUIRES: the reader has refused it.
std::vector<Finding> readerErrors(const DocumentText& document);

// Warns of what stands behind the document and is not read. REQUIRES: the text of the document is JSON.
void appendTrailingText(const DocumentText& document, std::vector<Finding>& found);

}  // namespace Brenta::OS::VIG::Tool
