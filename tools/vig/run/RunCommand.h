#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

struct RunOptions : RuleOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
    bool explain = false;      // tells what every machine decides on every event
    std::string whyNot;        // the JSON path of a transition to account for; empty if there is none
};

// `vig run` replays recorded events to the machines of a rule document. Returns the exit status.
int run(const RunOptions& options, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
