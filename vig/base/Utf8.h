#pragma once

#include <string>
#include <string_view>

namespace Brenta::OS::VIG {

// Returns the text with every ill-formed UTF-8 sequence replaced by U+FFFD, one for each longest prefix of a sequence
// that could have been well-formed. Text that is well-formed comes back unchanged.
std::string replaceInvalidUtf8(std::string text);

// Returns what stands behind the mark, if the text begins with one. The JSON library counts its offsets from there.
constexpr std::string_view withoutByteOrderMark(std::string_view text) {
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

}  // namespace Brenta::OS::VIG
