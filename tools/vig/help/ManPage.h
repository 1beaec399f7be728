#pragma once

#include <string>

#include "tools/vig/help/ProgramHelp.h"

namespace tool {

// The manual page, vig(1), in the language of man(7).
std::string manPageOf(const ProgramHelp& help);

}  // namespace tool
