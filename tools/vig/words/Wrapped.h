#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// So many characters fit in a line of what is written for people.
inline constexpr std::size_t kColumns = 80;

// Returns the text as lines of at most so many characters, all of which but the first begin with `hanging` spaces. It
// is broken at spaces; a word is never divided, as somebody may want to copy it, so that a longer one has a line of its
// own which is too long.
std::vector<std::string> wrapped(std::string_view text, std::size_t columns, std::size_t hanging);

}  // namespace Brenta::OS::VIG::Tool
