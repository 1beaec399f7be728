#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Json {
class Value;
}

namespace Brenta::OS::VIG {

// These give what the JSON library's own conversions give, without the cases in which those do not return normally.

// Both return a number truncated toward zero; nothing if it does not fit, or is not a number at all.
std::optional<std::int64_t> toInt64(const Json::Value& value);
std::optional<std::int32_t> toInt32(const Json::Value& value);

// Returns a string, number or boolean as text, null as the empty text, and nothing for an object or array.
std::optional<std::string> toText(const Json::Value& value);

// Renders the value for a log line, indented. A value nested far deeper than any rule is rendered on one line
// instead, since its indentation could take a thousand times the memory of the document.
std::string styledText(const Json::Value& value);

}  // namespace Brenta::OS::VIG
