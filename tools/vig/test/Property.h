#pragma once

#include <string>

#include "tools/vig/io/Interruption.h"
#include "tools/vig/test/TestFile.h"
#include "tools/vig/test/TestRun.h"

namespace Brenta::OS::VIG::Tool {

// Decides for all recordings whether the property is true of the rules at that path. If not, the failure shows a
// recording that refutes it, which the library has confirmed.
TestOutcome checkProperty(const std::string& rules, const Property& property, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
