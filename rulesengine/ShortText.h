#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Brenta::OS::RulesEngine {

// Returns zero if so many bytes are the same at both places.
// REQUIRES: the size is one to two words.
template <std::unsigned_integral Word>
Word differenceInWords(const char* left, const char* right, std::size_t size) {
    const auto wordAt = [](const char* place) {
        Word word;
        std::memcpy(&word, place, sizeof(word));
        return word;
    };
    const std::size_t rest = size - sizeof(Word);
    return (wordAt(left) ^ wordAt(right)) | (wordAt(left + rest) ^ wordAt(right + rest));
}

// Returns true if the texts are equal, byte by byte. The names of attributes and the constants of rules are short, and
// a call would take longer than their comparison: up to 32 bytes are compared in place, by words from the beginning and
// words up to the end, which overlap.
[[gnu::always_inline]] inline bool areEqualTexts(std::string_view left, std::string_view right) {
    const std::size_t size = left.size();
    if (size != right.size()) {
        return false;
    }
    const char* const a = left.data();
    const char* const b = right.data();
    if (size > 32) {
        return std::memcmp(a, b, size) == 0;
    }
    if (size > 16) {
        const std::size_t rest = size - 16;
        return (differenceInWords<std::uint64_t>(a, b, 16) |
                differenceInWords<std::uint64_t>(a + rest, b + rest, 16)) == 0;
    }
    if (size >= 8) {
        return differenceInWords<std::uint64_t>(a, b, size) == 0;
    }
    if (size >= 4) {
        return differenceInWords<std::uint32_t>(a, b, size) == 0;
    }
    return size == 0 || (a[0] == b[0] && a[size / 2] == b[size / 2] && a[size - 1] == b[size - 1]);
}

}  // namespace Brenta::OS::RulesEngine
