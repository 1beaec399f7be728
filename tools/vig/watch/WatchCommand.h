#pragma once

#include <chrono>
#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct WatchOptions : RuleOptions {
    std::chrono::milliseconds interval{1000};
    std::chrono::milliseconds duration{30'000};
    std::string recordFile;  // empty if nothing is recorded
    bool overwrite = false;  // the file may exist
    std::string procFolder = "/proc";
    std::string sysFolder = "/sys";
};

// `vig watch` gives events of this very machine to the machines of a rule document, which is followed when it changes.
// Samples are taken at once and after each interval up to the duration. Returns the exit status.
int watch(const WatchOptions& options, const Console& console, const Interruption& interruption);

void addWatch(CommandLine& commandLine, WatchOptions& options);

}  // namespace Brenta::OS::VIG::Tool
