#pragma once

#include <optional>
#include <string>

#include "tools/vig/document/Units.h"

namespace Brenta::OS::VIG::Tool {

// It says what number was meant by a text of which the library reads only the beginning.
struct NumberMeaning {
    std::string number;  // as the library reads it to its end
    std::string more;    // how a sentence with it goes on, such as ": 200 MB is 204800 kB here"; may be empty
};

// Returns nothing if it cannot be guessed. `unit` is that of what the number is compared with, or null.
std::optional<NumberMeaning> meaningOf(const std::string& text, bool isInteger, const Unit* unit);

}  // namespace Brenta::OS::VIG::Tool
