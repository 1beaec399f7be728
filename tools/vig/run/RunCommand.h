#pragma once

#include <optional>
#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleRun.h"
#include "tools/vig/run/Selection.h"

namespace Brenta::OS::VIG::Tool {

// It says on which events it is told what machines decide. Programs are told of all, unless it is nothing.
enum class Explain { Nothing, Highlights, All };

struct RunOptions : RuleOptions {
    std::string events = "-";  // a file of event records, or "-" for standard input
    Explain explain = Explain::Nothing;
    std::optional<std::string> whyNot;  // the name of a transition to account for; empty for all that never fire
    SelectionOptions selection;
};

// `vig run` replays recorded events to the machines of a rule document. Returns the exit status.
int run(const RunOptions& options, const Console& console, const Interruption& interruption);

}  // namespace Brenta::OS::VIG::Tool
