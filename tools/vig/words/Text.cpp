#include "tools/vig/words/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

#include "tools/vig/words/Characters.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

bool isPlainAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char each) { return each >= ' ' && each < '\x7F'; });
}

void appendEscaped(std::string& out, char character) {
    switch (character) {
        case '"':
            out += "\\\"";
            return;
        case '\\':
            out += "\\\\";
            return;
        case '\n':
            out += "\\n";
            return;
        case '\t':
            out += "\\t";
            return;
        case '\r':
            out += "\\r";
            return;
        default:
            if (static_cast<unsigned char>(character) < 0x20) {
                fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(character));
            } else {
                out += character;
            }
    }
}

// These are control characters, line breaks, and all that change the direction of writing, each by its first and last
// code point.
constexpr std::pair<char32_t, char32_t> kDangerous[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                                                        {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

// Returns the code point at the beginning of well-formed text if it is a dangerous one, or 0. Sets the length of the
// character.
char32_t dangerousCharacter(std::string_view text, std::size_t& length) {
    const Character character = firstCharacter(text);
    length = character.length;
    const auto holds = [&](const auto& range) {
        return range.first <= character.code && character.code <= range.second;
    };
    return std::ranges::any_of(kDangerous, holds) ? character.code : 0;
}

}  // namespace

void appendJsonString(std::string& out, std::string_view text) {
    out += '"';
    const std::string valid = isPlainAscii(text) ? std::string() : replaceInvalidUtf8(std::string(text));
    std::string_view rest = valid.empty() ? text : std::string_view(valid);
    while (!rest.empty()) {
        std::size_t length = 1;
        if (const char32_t character = dangerousCharacter(rest, length); character >= 0x7F) {
            fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(character));
        } else if (length == 1) {
            appendEscaped(out, rest[0]);
        } else {
            out += rest.substr(0, length);
        }
        rest.remove_prefix(length);
    }
    out += '"';
}

std::string inQuotes(std::string_view text) {
    std::string result;
    appendJsonString(result, text);
    return result;
}

std::string printable(std::string_view text) {
    if (isPlainAscii(text)) {
        return std::string(text);
    }
    const std::string valid = replaceInvalidUtf8(std::string(text));
    std::string result;
    for (std::size_t place = 0; place < valid.size();) {
        std::size_t length = 1;
        const std::string_view rest = std::string_view(valid).substr(place);
        const auto character = static_cast<unsigned>(dangerousCharacter(rest, length));
        if (character >= 0x100) {
            fmt::format_to(std::back_inserter(result), "\\u{:04x}", character);
        } else if (rest[0] == '\n' || rest[0] == '\t' || rest[0] == '\r') {
            appendEscaped(result, rest[0]);
        } else if (character != 0 || rest[0] == '\0') {
            fmt::format_to(std::back_inserter(result), "\\x{:02x}", character);
        } else {
            result += rest.substr(0, length);
        }
        place += length;
    }
    return result;
}

std::vector<std::string> printableLines(std::string_view message) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin <= message.size();) {
        const std::size_t end = std::min(message.find('\n', begin), message.size());
        const std::string_view line = message.substr(begin, end - begin);
        const std::size_t tabs = std::min(line.find_first_not_of('\t'), line.size());
        lines.push_back(std::string(2 * tabs, ' ') + printable(line.substr(tabs)));
        begin = end + 1;
    }
    return lines;
}

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each; });
    return result;
}

std::size_t charactersIn(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
}

std::size_t characterStart(std::string_view text, std::size_t offset) {
    constexpr std::size_t kMostContinuationBytes = 3;
    std::size_t start = offset;
    while (start > 0 && start < text.size() && offset - start < kMostContinuationBytes &&
           !beginsCharacter(text[start])) {
        --start;
    }
    return start;
}

std::string shortened(std::string_view text, std::size_t most) {
    return text.size() <= most ? std::string(text) : std::string(text.substr(0, characterStart(text, most))) + "…";
}

std::string excerpt(std::string_view text, std::size_t most) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    std::string line;
    while (!text.empty() && line.size() <= most) {
        const std::size_t length = std::min(text.find_first_of(kWhiteSpace), text.size());
        line += text.substr(0, length);
        text.remove_prefix(length);
        const std::size_t next = std::min(text.find_first_not_of(kWhiteSpace), text.size());
        line += next > 0 ? " " : "";
        text.remove_prefix(next);
    }
    return shortened(line, most);
}

std::string shownName(std::string_view text) {
    return printable(shortened(text, kMostShownOfName));
}

std::string shownState(std::string_view name) {
    return name.empty() ? "\"\"" : shownName(name);
}

std::string shownQuoted(std::string_view text) {
    return inQuotes(shortened(text, kMostShownOfName));
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

// The hash is FNV-1a of 64 bits.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 14695981039346656037u;
    for (const char each : text) {
        hash = (hash ^ static_cast<unsigned char>(each)) * 1099511628211u;
    }
    return hash;
}

std::string systemError(int number) {
    return std::strerror(number);
}

}  // namespace Brenta::OS::VIG::Tool
