#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// Appends the text as a JSON string, with its quotes. Ill-formed UTF-8 becomes U+FFFD, and
// what a terminal would act on is escaped.
void appendJsonString(std::string& out, std::string_view text);

// Returns the text as a JSON string.
std::string inQuotes(std::string_view text);

// Returns the text without what a terminal would act on: control characters and those that change the direction of
// writing are shown as escapes, ill-formed UTF-8 as U+FFFD.
std::string printable(std::string_view text);

// Returns the lines of a message, printable, each tab at the beginning of one as two spaces: JSON in the log is
// indented by tabs.
std::vector<std::string> printableLines(std::string_view message);

// Returns true if the byte is the first one of a character of UTF-8.
constexpr bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// Returns the text with the capital letters of ASCII as small ones.
std::string inLowerCase(std::string_view text);

std::size_t charactersIn(std::string_view text);

// Returns the nearest place at or before `offset` where no character of UTF-8 is divided.
std::size_t characterStart(std::string_view text, std::size_t offset);

// Returns the text, or its beginning and "…" if it has more than `most` bytes. No character of UTF-8 is divided.
std::string shortened(std::string_view text, std::size_t most);

// Returns the same of a text on one line: each run of white space becomes one space.
std::string excerpt(std::string_view text, std::size_t most);

// Return a name or a text that a document or a file brings along as messages show it: they may have any length, and
// messages may not. shownQuoted() makes a JSON string, of the text's beginning and "…" if it is long.
constexpr std::size_t kMostShownOfName = 64;
std::string shownName(std::string_view text);
std::string shownQuoted(std::string_view text);

// Returns the name of a state as tables and lists show it, where nobody would see an empty one.
std::string shownState(std::string_view name);

// Returns true if the line has nothing but spaces, tabs and a carriage return.
bool isBlank(std::string_view line);

// Returns a number that is the same for the same text everywhere. It tells texts apart and need not resist anybody.
std::uint64_t hashOf(std::string_view text);

// Returns how the system calls an errno value.
std::string systemError(int number);

// Returns what `render` makes of each element, with the separator between them.
std::string joined(const auto& elements, std::string_view separator, const auto& render) {
    std::string all;
    std::string_view before;
    for (const auto& each : elements) {
        all += before;
        all += render(each);
        before = separator;
    }
    return all;
}

// Returns `render` of each element as a JSON array.
std::string jsonArray(const auto& elements, const auto& render) {
    return "[" + joined(elements, ",", render) + "]";
}

}  // namespace Brenta::OS::VIG::Tool
