#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/RuleRun.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

enum class GraphFormat { Dot, Svg, Png, Mermaid };

struct GraphOptions : MachineOptions {
    GraphFormat format = GraphFormat::Dot;
    std::string events;  // a file of event records to replay, empty for none
};

// `vig graph` draws the machines of a rule document. Returns the exit status.
int graph(const GraphOptions& options, const Console& console, const Interruption& interruption);

void addGraph(CommandLine& commandLine, GraphOptions& options);

}  // namespace Brenta::OS::VIG::Tool
