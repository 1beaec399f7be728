#pragma once

#include <string_view>
#include <system_error>

namespace Brenta::OS::VIG::Tool {

// Tells whether the text is a number as JSON writes one.
bool isJsonNumber(std::string_view text);

// Converts a number that JSON writes so to the double that is nearest. Returns an error if it is none, or too large.
std::errc toDouble(std::string_view text, double& converted);

}  // namespace Brenta::OS::VIG::Tool
