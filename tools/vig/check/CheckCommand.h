#pragma once

#include <string>
#include <vector>

#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct CheckOptions {
    std::vector<std::string> rules = {};  // files with rule documents
    FindingFormat format = FindingFormat::Text;
    bool verbose = false;                   // findings that events show are told with these
    bool strict = false;                    // for the exit status, warnings and what is not decided count as errors
    std::vector<std::string> allowed = {};  // names of kWarningNames that are not reported
    std::string catalogueFile = {};         // the attributes of events; empty for those that the tool knows
    std::string eventsFile = {};            // a recording whose attributes stand in their place, or add to that file's
};

// `vig check` says what is wrong with rule documents. Returns the exit status.
int check(const CheckOptions& options, const Console& console, const Interruption& interruption);

// Adds the verb to the command line. It reads its options to `options`, which must outlive the command line.
void addCheck(CommandLine& commandLine, CheckOptions& options);

}  // namespace Brenta::OS::VIG::Tool
