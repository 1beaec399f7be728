#include "vig/base/Utf8.h"

#include <cstddef>

namespace Brenta::OS::VIG {

namespace {

struct Sequence {
    std::size_t length;
    bool wellFormed;
};

// Returns the sequence at the beginning of `text`, which is not empty and does not begin with ASCII. The second byte
// has a narrower range after some lead bytes, which rules out overlong forms, surrogates and what is beyond U+10FFFF.
Sequence firstSequence(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0xC2 || lead > 0xF4) {
        return {1, false};
    }
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (std::size_t place = 1; place < length; ++place) {
        const unsigned next = place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
        if (next < lowest || next > highest) {
            return {place, false};
        }
        lowest = 0x80;
        highest = 0xBF;
    }
    return {length, true};
}

// Returns the length of the well-formed text at the beginning. Most text is ASCII.
std::size_t wellFormedLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size()) {
        if (static_cast<unsigned char>(text[length]) < 0x80) {
            ++length;
            continue;
        }
        const Sequence sequence = firstSequence(text.substr(length));
        if (!sequence.wellFormed) {
            break;
        }
        length += sequence.length;
    }
    return length;
}

}  // namespace

std::string replaceInvalidUtf8(std::string text) {
    std::size_t length = wellFormedLength(text);
    if (length == text.size()) {
        return text;
    }
    std::string valid;
    std::string_view rest = text;
    for (; length < rest.size(); length = wellFormedLength(rest)) {
        valid += rest.substr(0, length);
        valid += "\xEF\xBF\xBD";
        rest.remove_prefix(length + firstSequence(rest.substr(length)).length);
    }
    return valid.append(rest);
}

}  // namespace Brenta::OS::VIG
