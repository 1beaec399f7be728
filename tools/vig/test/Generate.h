#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Writes a file of tests of the rules at that path to the output: together they reach all that can be reached. Says
// what cannot, and why. Returns the exit status.
int generateTests(const std::string& rules, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
