#pragma once

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/findings/Findings.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Returns everything that is wrong with a rule document: errors for what the library refuses with these names, and what
// `vig check` warns of, with these attributes in mind. There is an error under the name of a code of the library
// exactly when the library refuses the document. An interruption, if there may be one, leaves the rest undecided. The
// platform's log and its trigger service are not available meanwhile; used on one thread.
Findings findingsIn(const DocumentText& document, const VIGParserConfig& registry, const Catalogue& catalogue,
                    const Interruption* interruption = nullptr);

}  // namespace Brenta::OS::VIG::Tool
