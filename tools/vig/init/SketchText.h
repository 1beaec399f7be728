#pragma once

#include <string>

#include "tools/vig/init/Sketch.h"

namespace Brenta::OS::VIG::Tool {

// Returns a sentence on what the machine does.
std::string summaryOf(const Sketch& sketch);

// Returns the rule document of the sketch, and a file of its tests, which reach all of it, and tell it from what an
// author could have written by mistake. `rules` is how they name the document.
std::string documentOf(const Sketch& sketch);
std::string testsOf(const Sketch& sketch, const std::string& rules);

}  // namespace Brenta::OS::VIG::Tool
