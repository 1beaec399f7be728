#pragma once

#include <string>
#include <vector>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

enum class ProofFormat { Text, Json };

struct ProveOptions {
    std::vector<std::string> rules = {};  // files with rule documents
    ProofFormat format = ProofFormat::Text;
    std::string witnessFolder = {};  // where the recordings are written; empty if nowhere
    std::string contextFile = {};    // of every machine; empty for a context without attributes
    std::string catalogueFile = {};  // the attributes of events; empty for those that the tool knows
};

// `vig prove` decides what the machines of rule documents can do, by any events. Returns the exit status.
int prove(const ProveOptions& options, const Console& console, const Interruption& interruption);

void addProve(CommandLine& commandLine, ProveOptions& options);

}  // namespace Brenta::OS::VIG::Tool
