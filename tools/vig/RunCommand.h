#pragma once

#include <string>

#include "tools/vig/Console.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/RuleRun.h"

namespace tool {

struct RunOptions : RuleOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
    bool explain = false;      // tells what every machine decides on every event
    std::string whyNot;        // the JSON path of a transition to account for; empty if there is none
};

// `vig run`: offers recorded events to the machines of a rule document. Returns the exit status.
int run(const RunOptions& options, const Console& console, const Interruption& interruption);

}  // namespace tool
