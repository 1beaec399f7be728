#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace fuzz {

inline constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// Ends the process, which libFuzzer takes for a finding.
[[noreturn]] void fail(const std::string& what);

// Calls `use` with the text. Fails if more memory is in use at a time than `always` and 256 times the size of the text
// (256 MB for 1 MB). For one text in some thousands it first does the same with large texts, made of it by repeating a
// piece, and also fails if the time that `use` takes grows faster than the text.
void useWithinLimits(const std::string& text, std::size_t always, const std::function<void(const std::string&)>& use);

}  // namespace fuzz
