#pragma once

#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Returns what nobody sees of a name, as in "U+00A0 (no-break space) at its end": a space at one of the ends, and other
// characters there or in it, but for those that belong to emoji or to the writing of a language. Empty if all is seen.
std::string unseenIn(std::string_view name);

// Returns the name without that: a space of another kind inside becomes a space.
std::string seenOf(std::string_view name);

}  // namespace Brenta::OS::VIG::Tool
