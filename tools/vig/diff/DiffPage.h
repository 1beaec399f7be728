#pragma once

#include <string>

#include "tools/vig/diff/DocumentDiff.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Returns a page that has what is printed of the documents, and each recording that tells two machines apart, with the
// two side by side. Once it is interrupted, what is returned means nothing.
std::string pageOf(const DocumentDiff& diff, const Both<const DocumentModel*>& documents, const AttributeSet& context,
                   const std::string& text, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
