#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/vig/diff/DiffCommand.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/ReportWriters.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

// Without devices the documents are compared for all events; see DiffOptions.
struct FleetDiffOptions : MachineOptions {  // `rules` is the old document
    // One of them may have none.
    struct Formats {
        std::optional<DiffFormat> ofDocuments = DiffFormat::Text;
        ReportFormat ofDevices = ReportFormat::Text;
    };

    std::string newRules;
    Formats format = {};
    std::string catalogueFile;
    bool states = false;
    std::vector<std::string> devices;  // files of event records, "-" for standard input
    unsigned threads = 1;
    bool summaryOnly = false;  // no device is told of
};

// Compares what two rule documents do on the recordings of several devices. Returns the exit status.
int fleetDiff(const FleetDiffOptions& options, const Console& console, const Interruption& interruption);

// Adds the verb `vig diff`: of documents alone, or over the recordings of devices.
void addDiff(CommandLine& commandLine, FleetDiffOptions& options);

}  // namespace Brenta::OS::VIG::Tool
