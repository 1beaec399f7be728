#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "tools/vig/check/CatalogueCommand.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/help/ProgramHelp.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/test/TestCommand.h"
#include "tools/vig/watch/WatchCommand.h"

namespace Brenta::OS::VIG::Tool {

// What is to be written instead of running a verb.
struct Answer {
    int status;
    std::string text;  // help or the version if the status is kExitDone, else what is wrong
    std::string hint;  // what to do then
};

using Command = std::variant<RunOptions, FleetOptions, SummaryOptions, WatchOptions, CheckOptions, CatalogueOptions,
                             TestOptions, GraphOptions, Answer>;

// What the arguments ask for. The first one is the program's name.
Command parseCommandLine(int count, const char* const* arguments);

// What the manual page and the completions are made of.
ProgramHelp programHelp();

// "500ms", "1s", "2m", "1h" or a number of seconds, which may have a fraction; empty for anything else, also for more
// than a year.
std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);

}  // namespace Brenta::OS::VIG::Tool
