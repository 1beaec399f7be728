#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Appends the text as a JSON string, with its quotes. Ill-formed UTF-8 becomes U+FFFD, and
// what a terminal would act on is escaped.
void appendJsonString(std::string& out, std::string_view text);

// The text as a JSON string.
std::string quoted(std::string_view text);

// The text without what a terminal would act on: control characters and those that change the direction of writing
// are shown as escapes, ill-formed UTF-8 as U+FFFD.
std::string printable(std::string_view text);

// The lines of a message, printable, each tab at the beginning of one as two spaces: JSON in the log is indented by
// tabs.
std::vector<std::string> printableLines(std::string_view message);

// Whether the line has nothing but spaces, tabs and a carriage return.
bool isBlank(std::string_view line);

// A number that is the same for the same text everywhere. It tells texts apart and need not resist anybody.
std::uint64_t hashOf(std::string_view text);

// How the system calls an errno value.
std::string systemError(int number);

}  // namespace tool
