#include "tools/vig/words/Unseen.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/vig/words/Characters.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// These belong to emoji, or to the writing of some languages, and a NUL is told of by another warning.
constexpr std::pair<char32_t, char32_t> kMeantInside[] = {{0x0000, 0x0000}, {0x034F, 0x034F},  {0x061C, 0x061C},
                                                          {0x200C, 0x200F}, {0x202A, 0x202E},  {0x2066, 0x2069},
                                                          {0xFE00, 0xFE0F}, {0xE0020, 0xE007F}};
constexpr std::pair<char32_t, char32_t> kMeantAtTheEnd[] = {{0x0000, 0x0000}, {0xFE00, 0xFE0F}, {0xE007F, 0xE007F}};

bool isIn(const auto& ranges, char32_t code) {
    return std::ranges::any_of(ranges, [&](const auto& each) { return each.first <= code && code <= each.second; });
}

bool isBlankAtTheEnd(char32_t code) {
    return code == ' ' || (isInvisible(code) && !isIn(kMeantAtTheEnd, code));
}

}  // namespace

std::string unseenIn(std::string_view text) {
    const auto named = [](std::string_view rest) {
        return rest[0] == ' ' ? std::string("a space") : characterName(rest);
    };
    std::string inside;
    std::string atTheEnd;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [code, length] = firstCharacter(rest);
        const bool isFirst = rest.size() == text.size();
        if (isFirst && isBlankAtTheEnd(code)) {
            return named(rest) + " at its beginning";
        }
        if (inside.empty() && isInvisible(code) && !isIn(kMeantInside, code)) {
            inside = named(rest) + " in it";
        }
        atTheEnd = isBlankAtTheEnd(code) ? named(rest) + " at its end" : std::string();
        rest.remove_prefix(length);
    }
    return atTheEnd.empty() ? inside : atTheEnd;
}

std::string seenOf(std::string_view text) {
    std::string result;
    std::size_t end = 0;  // of the last character that is seen
    for (std::string_view rest = text; !rest.empty();) {
        const auto [code, length] = firstCharacter(rest);
        const bool isBlank = isBlankAtTheEnd(code);
        if (!isInvisible(code) || isIn(kMeantInside, code)) {
            result += isBlank && end == 0 ? std::string_view() : rest.substr(0, length);
        } else if (columnsOf(rest.substr(0, length)) > 0 && end > 0 && !result.ends_with(' ')) {
            result += ' ';
        }
        end = isBlank ? end : result.size();
        rest.remove_prefix(length);
    }
    return result.substr(0, end);
}

}  // namespace Brenta::OS::VIG::Tool
