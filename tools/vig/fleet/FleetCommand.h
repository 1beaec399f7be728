#pragma once

#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RunCommand.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct FleetOptions : RunOptions {
    std::vector<std::string> devices;  // files of event records, "-" for standard input; at least one
    unsigned threads = 1;
    bool summaryOnly = false;  // no line for what happens
    bool byDevice = false;     // each file has records of any number of devices, which they name
};

// Runs `vig run` over the recordings of several devices, or for a summary. Returns the exit status.
int fleet(const FleetOptions& options, const Console& console, const Interruption& interruption);

// Adds the verb `vig run`: of one device if there is one file of it and no summary is wanted, else of a fleet.
void addRun(CommandLine& commandLine, FleetOptions& options);

}  // namespace Brenta::OS::VIG::Tool
