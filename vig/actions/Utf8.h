#pragma once

#include <string>
#include <string_view>

namespace Brenta::OS::VIG {

// The text with every ill-formed UTF-8 sequence replaced by U+FFFD, one for each longest prefix of a sequence
// that could have been well-formed. Text that is well-formed comes back unchanged.
std::string replaceInvalidUtf8(std::string_view text);

}  // namespace Brenta::OS::VIG
