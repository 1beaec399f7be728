#pragma once

#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/ReportWriters.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct FleetDiffOptions : RuleOptions {  // `rules` is the old document
    std::string newRules;
    std::vector<std::string> devices;  // files of event records, "-" for standard input
    unsigned threads = 1;
    bool summaryOnly = false;  // no device is told of
};

// Compares what two rule documents do on the recordings of several devices. Returns the exit status.
int fleetDiff(const FleetDiffOptions& options, const Console& console, const Interruption& interruption);

// Adds the verb `vig diff`.
void addDiff(CommandLine& commandLine, FleetDiffOptions& options);

}  // namespace Brenta::OS::VIG::Tool
