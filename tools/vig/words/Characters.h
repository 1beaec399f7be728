#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Characters of UTF-8 as people see them, or do not.

struct Character {
    char32_t code;       // U+FFFD for a byte that belongs to no character
    std::size_t length;  // in bytes
};

// Returns the first character. REQUIRES: the text is not empty.
Character firstCharacter(std::string_view text);

// Returns true for what a reader of the text does not see, or takes for a space; false for the space itself.
bool isInvisible(char32_t code);

// Returns how messages call the first character: `“ (U+201C)`, `U+200B (zero-width space)` if it cannot be shown, or
// `the byte 0xE4, which is no UTF-8`. REQUIRES: the text is not empty.
std::string characterName(std::string_view text);

// Returns how many columns of a terminal the text takes. It does not tell how a terminal shows control characters.
std::size_t columnsOf(std::string_view text);

}  // namespace Brenta::OS::VIG::Tool
