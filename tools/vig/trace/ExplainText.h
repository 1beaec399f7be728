#pragma once

#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"
#include "tools/vig/trace/WhyNot.h"

namespace Brenta::OS::VIG::Tool {

// Returns a step as a tree, one line an element, without what a terminal would act on. The first line is the root; a
// step that concerns no transition has no other.
std::vector<std::string> explainLines(const Step& step);

// Returns the answer as a tree likewise. REQUIRES: it has no problem.
std::vector<std::string> whyNotLines(const WhyNot& answer);

// Return the same as one JSON object each, without a line end.
std::string explainJson(const Step& step);
std::string whyNotJson(const WhyNot& answer);

}  // namespace Brenta::OS::VIG::Tool
