#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

// The text, or its beginning and "…" if it has more than `most` bytes. No character of UTF-8 is divided.
std::string shortened(std::string_view text, std::size_t most);

// The same of a text on one line: white space becomes one space each.
std::string excerpt(std::string_view text, std::size_t most);

// Whether the byte is the first one of a character of UTF-8.
constexpr bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// The nearest place at or before `offset` where no character of UTF-8 is divided.
std::size_t characterStart(std::string_view text, std::size_t offset);

}  // namespace tool
