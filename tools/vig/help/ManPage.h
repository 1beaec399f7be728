#pragma once

#include <string>

#include "tools/vig/arguments/ProgramHelp.h"

namespace Brenta::OS::VIG::Tool {

// The manual page, vig(1), in the language of man(7).
std::string manPageOf(const ProgramHelp& help);

}  // namespace Brenta::OS::VIG::Tool
