#include "tools/vig/words/Characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// These are code points in a row that are not a visible character of one column.
struct Range {
    char32_t first;
    char32_t last;
    std::size_t columns;
    std::string_view name;  // empty if they are visible
};

constexpr Range kRanges[] = {
    {0x0000, 0x0000, 1, "NUL"},
    {0x0001, 0x0008, 1, "control character"},
    {0x0009, 0x0009, 1, "tab"},
    {0x000A, 0x000A, 1, "line feed"},
    {0x000B, 0x000B, 1, "vertical tab"},
    {0x000C, 0x000C, 1, "form feed"},
    {0x000D, 0x000D, 1, "carriage return"},
    {0x000E, 0x001F, 1, "control character"},
    {0x007F, 0x009F, 1, "control character"},
    {0x00A0, 0x00A0, 1, "no-break space"},
    {0x00AD, 0x00AD, 1, "soft hyphen"},
    {0x0300, 0x034E, 0, {}},
    {0x034F, 0x034F, 0, "joiner"},
    {0x0350, 0x036F, 0, {}},
    {0x0483, 0x0489, 0, {}},
    {0x0591, 0x05BD, 0, {}},
    {0x0610, 0x061A, 0, {}},
    {0x061C, 0x061C, 0, "direction mark"},
    {0x064B, 0x065F, 0, {}},
    {0x0E31, 0x0E31, 0, {}},
    {0x0E34, 0x0E3A, 0, {}},
    {0x1100, 0x115F, 2, {}},
    {0x1680, 0x1680, 1, "space of another script"},
    {0x180E, 0x180E, 0, "zero-width separator"},
    {0x1AB0, 0x1AFF, 0, {}},
    {0x1DC0, 0x1DFF, 0, {}},
    {0x2000, 0x200A, 1, "space of a fixed width"},
    {0x200B, 0x200B, 0, "zero-width space"},
    {0x200C, 0x200C, 0, "zero-width non-joiner"},
    {0x200D, 0x200D, 0, "zero-width joiner"},
    {0x200E, 0x200F, 0, "direction mark"},
    {0x2028, 0x2028, 1, "line separator"},
    {0x2029, 0x2029, 1, "paragraph separator"},
    {0x202A, 0x202E, 0, "direction mark"},
    {0x202F, 0x202F, 1, "narrow no-break space"},
    {0x205F, 0x205F, 1, "space of a fixed width"},
    {0x2060, 0x2060, 0, "word joiner"},
    {0x2061, 0x2064, 0, "invisible operator"},
    {0x2066, 0x2069, 0, "direction mark"},
    {0x20D0, 0x20FF, 0, {}},
    {0x2E80, 0x2FFF, 2, {}},
    {0x3000, 0x3000, 2, "ideographic space"},
    {0x3001, 0x3029, 2, {}},
    {0x302A, 0x302F, 0, {}},
    {0x3030, 0x303E, 2, {}},
    {0x3041, 0xA4CF, 2, {}},
    {0xA960, 0xA97F, 2, {}},
    {0xAC00, 0xD7A3, 2, {}},
    {0xF900, 0xFAFF, 2, {}},
    {0xFE00, 0xFE0F, 0, "variation selector"},
    {0xFE20, 0xFE2F, 0, {}},
    {0xFE30, 0xFE6F, 2, {}},
    {0xFEFF, 0xFEFF, 0, "byte order mark"},
    {0xFF01, 0xFF60, 2, {}},
    {0xFFE0, 0xFFE6, 2, {}},
    {0x1F300, 0x1F64F, 2, {}},
    {0x1F680, 0x1F6FF, 2, {}},
    {0x1F900, 0x1F9FF, 2, {}},
    {0x20000, 0x3FFFD, 2, {}},
    {0xE0000, 0xE007F, 0, "invisible tag"},
};

static_assert(std::ranges::is_sorted(kRanges, {}, &Range::first));

// Returns null if there is none.
const Range* rangeOf(char32_t code) {
    const Range* const after = std::ranges::upper_bound(kRanges, code, {}, &Range::first);
    return after != std::begin(kRanges) && code <= (after - 1)->last ? after - 1 : nullptr;
}

}  // namespace

Character firstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        return {first, 1};
    }
    const std::string_view bytes = text.substr(0, first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4);
    if (replaceInvalidUtf8(std::string(bytes)) != bytes) {
        return {0xFFFD, 1};
    }
    char32_t code = first & (0x7Fu >> bytes.size());
    for (const char each : bytes.substr(1)) {
        code = (code << 6) + (static_cast<unsigned char>(each) & 0x3F);
    }
    return {code, bytes.size()};
}

bool isInvisible(char32_t code) {
    const Range* const range = rangeOf(code);
    return range != nullptr && !range->name.empty();
}

std::string characterName(std::string_view text) {
    const auto [code, length] = firstCharacter(text);
    if (code == 0xFFFD && length == 1) {
        return fmt::format("the byte 0x{:02X}, which is no UTF-8,", static_cast<unsigned char>(text[0]));
    }
    const std::string number = fmt::format("U+{:04X}", static_cast<unsigned>(code));
    const Range* const range = rangeOf(code);
    if (range != nullptr && !range->name.empty()) {
        return number + " (" + std::string(range->name) + ")";
    }
    return range != nullptr && range->columns == 0 ? number : std::string(text.substr(0, length)) + " (" + number + ")";
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const auto [code, length] = firstCharacter(text);
        const Range* const range = rangeOf(code);
        columns += range != nullptr ? range->columns : 1;
        text.remove_prefix(length);
    }
    return columns;
}

}  // namespace Brenta::OS::VIG::Tool
