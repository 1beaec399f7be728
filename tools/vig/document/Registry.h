#pragma once

#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Returns the names that the library knows, as it parses with them.
VIGParserConfig libraryRegistry();

}  // namespace Brenta::OS::VIG::Tool
