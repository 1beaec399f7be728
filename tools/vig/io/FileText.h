#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Tells whether the argument of a verb is "-", which stands for standard input.
bool isStandardInput(const std::string& path);

// Returns what messages call the argument: "<stdin>", or its path.
std::string nameOfInput(const std::string& path);

// Tells whether standard input is asked for more than once, which can be read once only.
bool hasStandardInputTwice(const std::vector<std::string>& paths);
inline constexpr std::string_view kReadOnce = "standard input can be read only once";

// Returns why the file is not read, or an empty text if it is: it is a regular file, or a pipe that the shell has
// opened for the process.
std::string whyUnreadable(const std::string& path);

// Returns the whole content of such a file, or of standard input. If it is not read, returns nothing, with the reason
// in `problem`; also nothing if it was interrupted.
std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem);

// Returns the same as a file in memory, for who takes only a path, or takes it more than once.
std::optional<Descriptor> copyInMemory(const std::string& path, const Interruption& interruption, std::string& problem);

// Returns a text as such a file; if there can be none, nothing, with the reason in `problem`.
std::optional<Descriptor> fileInMemory(std::string_view text, std::string& problem);

// Puts a text in the place of a file, or makes one: whoever reads it finds either all that was there or all of the
// text. Returns what went wrong, after which the file is as it was; empty if nothing did.
std::string replaceFile(const std::string& path, std::string_view text);

// Returns the path of an open file, as long as it is open.
std::string pathOf(const Descriptor& file);

}  // namespace Brenta::OS::VIG::Tool
