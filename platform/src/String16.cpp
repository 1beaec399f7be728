#include <host/Utf8.h>
#include <utils/String16.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isLeadSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isTrailSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Takes the first character off `text`, which is not empty. Nothing if it is not well-formed, which shortest
// forms and the range of Unicode without surrogates are part of.
std::optional<char32_t> takeCharacter(std::string_view& text) {
    constexpr std::array<char32_t, 4> kSmallest = {0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t following = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    if ((first >= 0x80 && first < 0xC0) || first >= 0xF8 || text.size() <= following) {
        return std::nullopt;
    }
    char32_t character = following == 0 ? first : first & (0x3FU >> following);
    for (const char byte : text.substr(1, following)) {
        const auto bits = static_cast<unsigned char>(byte);
        if ((bits & 0xC0) != 0x80) {
            return std::nullopt;
        }
        character = (character << 6) | (bits & 0x3FU);
    }
    if (character < kSmallest[following] || character > 0x10FFFF || isLeadSurrogate(character) ||
        isTrailSurrogate(character)) {
        return std::nullopt;
    }
    text.remove_prefix(following + 1);
    return character;
}

void appendUtf16(std::u16string& text, char32_t character) {
    if (character < 0x10000) {
        text += static_cast<char16_t>(character);
        return;
    }
    text += static_cast<char16_t>(0xD7C0 + (character >> 10));
    text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

void appendUtf8(std::string& text, char32_t character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    const std::uint32_t marker = (0xF0U << (3 - following)) & 0xFFU;
    text += static_cast<char>(marker | (character >> (6 * following)));
    for (int i = following - 1; i >= 0; --i) {
        text += static_cast<char>(0x80U | ((character >> (6 * i)) & 0x3FU));
    }
}

}  // namespace

namespace android {

String16::String16(const char* utf8) {
    std::string_view rest = utf8;
    while (!rest.empty()) {
        const auto character = takeCharacter(rest);
        if (!character) {
            text.clear();
            return;
        }
        appendUtf16(text, *character);
    }
}

}  // namespace android

namespace host {

std::string toUtf8(const android::String16& text) {
    std::string result;
    const std::u16string_view units(text.c_str(), text.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t character = units[i];
        if (isLeadSurrogate(character) && i + 1 < units.size() && isTrailSurrogate(units[i + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++i] - 0xDC00U);
        } else if (isLeadSurrogate(character) || isTrailSurrogate(character)) {
            character = kReplacement;
        }
        appendUtf8(result, character);
    }
    return result;
}

}  // namespace host
