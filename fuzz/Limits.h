#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace fuzz {

// Calls `use` with the text. Ends the process if more memory is in use at a time than `always` and 256 times the size
// of the text (256 MB for 1 MB). For one text in some thousands it first does the same with large texts, made of it by
// repeating a piece, and also ends the process if the time that `use` takes grows faster than the text.
void useWithinLimits(const std::string& text, std::size_t always, const std::function<void(const std::string&)>& use);

inline constexpr std::size_t kMegabyte = std::size_t{1} << 20;

}  // namespace fuzz
