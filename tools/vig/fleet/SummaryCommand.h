#pragma once

#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/ReportWriters.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct SummaryOptions {
    std::vector<std::string> files = {"-"};  // "-" for standard input
    ReportFormat format = ReportFormat::Text;
};

// `vig summary` merges the summaries of several runs, one a line of the files. Returns the exit status.
int summary(const SummaryOptions& options, const Console& console, const Interruption& interruption);

void addSummary(CommandLine& commandLine, SummaryOptions& options);

}  // namespace Brenta::OS::VIG::Tool
