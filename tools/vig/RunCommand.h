#pragma once

#include <string>

#include "tools/vig/Console.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/RuleRun.h"

namespace tool {

struct RunOptions : RuleOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
};

// `vig run`: offers recorded events to the machines of a rule document. Returns the exit status.
int run(const RunOptions& options, const Console& console, const Interruption& interruption);

// The same for verbs that want to know what the machines decide. `trace` may be null.
int replay(const RunOptions& options, const Console& console, const Interruption& interruption, Trace* trace);

}  // namespace tool
