#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "tools/vig/CatalogueCommand.h"
#include "tools/vig/CheckCommand.h"
#include "tools/vig/FleetCommand.h"
#include "tools/vig/GraphCommand.h"
#include "tools/vig/RunCommand.h"
#include "tools/vig/SummaryCommand.h"
#include "tools/vig/TestCommand.h"
#include "tools/vig/WatchCommand.h"

namespace tool {

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

// "500ms", "1s", "2m", "1h" or a number of seconds, which may have a fraction; empty for anything else, also for more
// than a year.
std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);

}  // namespace tool
