#pragma once

#include <string>

#include "tools/vig/commandline/CommandLine.h"

namespace Brenta::OS::VIG::Tool {

// Returns the manual page, vig(1), in the language of man(7).
std::string manPageOf(const ProgramHelp& help);

// Return scripts that complete the command line in a shell: verbs, options, the words that an option chooses from,
// files.
std::string bashCompletionOf(const ProgramHelp& help);
std::string zshCompletionOf(const ProgramHelp& help);

}  // namespace Brenta::OS::VIG::Tool
