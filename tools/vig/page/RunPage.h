#pragma once

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RunCommand.h"

namespace Brenta::OS::VIG::Tool {

// Replays recorded events to the machines of a rule document, as run() does, and writes a page on which people can step
// through it. Returns the exit status.
int runToPage(const RunOptions& options, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
