#pragma once

#include <string>

namespace Brenta::OS::VIG {

// The text with every ill-formed UTF-8 sequence replaced by U+FFFD, one for each longest prefix of a sequence
// that could have been well-formed. Text that is well-formed comes back unchanged.
std::string replaceInvalidUtf8(std::string text);

}  // namespace Brenta::OS::VIG
