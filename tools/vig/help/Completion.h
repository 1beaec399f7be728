#pragma once

#include <string>

#include "tools/vig/arguments/ProgramHelp.h"

namespace Brenta::OS::VIG::Tool {

// Scripts that complete the command line in a shell: verbs, options, the words that an option chooses from, files.
std::string bashCompletionOf(const ProgramHelp& help);
std::string zshCompletionOf(const ProgramHelp& help);

}  // namespace Brenta::OS::VIG::Tool
