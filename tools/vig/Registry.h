#pragma once

#include "vig/parsers/VIGParserConfig.h"

namespace tool {

// The names that the library knows, as it parses with them.
Brenta::OS::VIG::VIGParserConfig libraryRegistry();

}  // namespace tool
