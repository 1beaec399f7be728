#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Brenta::OS::VIG {

// Numbers in documents are written as text and read as the C library reads them in its own locale: leading
// white space and a sign are accepted, and reading stops at the first character that does not belong to the
// number, so that "12kB" is 12. Integers are base 10; doubles may have exponents or be infinite.

// Empty if the text starts with no number or with one beyond the range of the type, or so close to 0 that a double
// cannot tell it from 0.
std::optional<std::int32_t> readInt32(const std::string& text);
std::optional<std::int64_t> readInt64(const std::string& text);
std::optional<double> readDouble(const std::string& text);

// 0 if the text starts with no number, the nearest limit (for doubles an infinity) if it is beyond the range.
std::int64_t readNearestInt64(const std::string& text);
double readNearestDouble(const std::string& text);

}  // namespace Brenta::OS::VIG
