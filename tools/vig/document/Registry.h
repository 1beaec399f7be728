#pragma once

#include <functional>

#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// Returns the names that the library knows, as it parses with them.
VIGParserConfig libraryRegistry();

// Returns the same registry in which each random function gives what `draw` does, a number from [0, 1), spread over
// its range. Copies of `draw` are called, on the threads that drive the machines.
VIGParserConfig withDraws(const VIGParserConfig& library, const std::function<double()>& draw);

}  // namespace Brenta::OS::VIG::Tool
