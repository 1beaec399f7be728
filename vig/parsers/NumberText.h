#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

namespace Brenta::OS::VIG {

// Numbers in documents are written as text and read as the C library reads them in its own locale: leading
// white space and a sign are accepted, and reading stops at the first character that does not belong to the
// number, so that "12kB" is 12. Integers are base 10; doubles may have exponents or be infinite.
template <typename T>
struct NumberText {
    T nearest;           // 0 if the text starts with no number, the nearest limit if it is beyond the range of the type
    bool isInRange;      // false, too, if there is none, or one so close to 0 that a double cannot tell it from 0
    std::size_t length;  // how far the number reaches in the text, white space before it included
};

// T is std::int64_t or double.
template <typename T>
NumberText<T> readNumber(const std::string& text);

// Returns a constant of a document as a value of its type: a text as it is, a number only if it is in range.
template <typename T>
std::optional<T> readConstant(const std::string& text) {
    if constexpr (std::is_same_v<T, std::string>) {
        return text;
    } else {
        const NumberText<T> number = readNumber<T>(text);
        return number.isInRange ? std::optional(number.nearest) : std::nullopt;
    }
}

// Returns the constant as the value that is nearest to it.
template <typename T>
T readNearest(const std::string& text) {
    if constexpr (std::is_same_v<T, std::string>) {
        return text;
    } else {
        return readNumber<T>(text).nearest;
    }
}

// Returns the number if 32 bits hold it.
std::optional<std::int32_t> toInt32(std::optional<std::int64_t> wide);

}  // namespace Brenta::OS::VIG
