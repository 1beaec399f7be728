#pragma once

#include <vector>

#include "tools/vig/check/Catalogue.h"
#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Appends what is probably a mistake in a configuration that the library accepts, in the order of the text. The names
// are of kWarningNames. An endless-entering that nothing can stop is an error. A transition that cannot fire or a state
// that cannot be reached is named once; what follows from it is not.
void appendWarnings(const ConfigModel& config, const Catalogue& catalogue, const VIGParserConfig& registry,
                    std::vector<Diagnostic>& found);

}  // namespace Brenta::OS::VIG::Tool
