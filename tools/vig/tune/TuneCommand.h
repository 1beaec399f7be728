#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleRun.h"
#include "tools/vig/tune/TuneTarget.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

enum class TuneFormat { Text, Json };

struct TuneOptions : MachineOptions {
    std::string path;  // of the constant, in the document
    std::vector<std::string> devices;
    std::string targetText;
    std::optional<TuneTarget> target;  // what the text says
    TuneFormat format = TuneFormat::Text;
    unsigned threads = 1;
};

// `vig tune` finds the number in a filter with which so many devices of a fleet fire. Returns the exit status.
int tune(const TuneOptions& options, const Console& console, const Interruption& interruption);

void addTune(CommandLine& commandLine, TuneOptions& options);

}  // namespace Brenta::OS::VIG::Tool
