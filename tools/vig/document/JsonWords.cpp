#include "tools/vig/document/JsonWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kDigits = "0123456789";

constexpr std::pair<char, std::u32string_view> kLookAlikes[] = {
    {'"', U"\u201C\u201D\u201E\u201F\u00AB\u00BB\u02BA\u2033\u2036\u275D\u275E\u301D\u301E\u301F\uFF02"},
    {'\'', U"'`\u00B4\u02BC\u2018\u2019\u201A\u201B\u2032\u2039\u203A\u275B\u275C\uFF07"},
    {',', U";\uFF0C\uFF1B\u3001"},
    {':', U"\uFF1A\u2236\uA789"},
    {'{', U"\uFF5B"},
    {'}', U"\uFF5D"},
    {'[', U"(\uFF3B\uFF08"},
    {']', U")\uFF3D\uFF09"},
};

bool isDigit(char each) {
    return kDigits.find(each) != std::string_view::npos;
}

std::string_view takeDigits(std::string_view& text) {
    const std::string_view digits = text.substr(0, text.find_first_not_of(kDigits));
    text.remove_prefix(digits.size());
    return digits;
}

bool takeOneOf(std::string_view& text, std::string_view characters) {
    const bool has = !text.empty() && characters.find(text[0]) != std::string_view::npos;
    text.remove_prefix(has ? 1 : 0);
    return has;
}

// Tells whether the reader takes the whole word for a number; it may be one that cannot be read, such as 1e.
bool hasFormOfNumber(std::string_view word) {
    if (!takeOneOf(word, "+-") && (word.empty() || !isDigit(word[0]))) {
        return false;
    }
    takeDigits(word);
    if (takeOneOf(word, ".")) {
        takeDigits(word);
    }
    if (takeOneOf(word, "eE")) {
        takeOneOf(word, "+-");
        takeDigits(word);
    }
    return word.empty();
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::ranges::find(words, word) != words.end();
}

// Returns the number of another base as a decimal one; empty if it is none.
std::string decimalOf(std::string_view word) {
    const bool isNegative = takeOneOf(word, "-");
    const std::string prefix = inLowerCase(word.substr(0, 2));
    const int base = prefix == "0x" ? 16 : prefix == "0o" ? 8 : prefix == "0b" ? 2 : 0;
    std::uint64_t number = 0;
    const char* const begin = word.data() + std::min<std::size_t>(2, word.size());
    const char* const end = word.data() + word.size();
    if (base == 0 || begin == end) {
        return {};
    }
    const auto [stop, error] = std::from_chars(begin, end, number, base);
    return error == std::errc() && stop == end ? fmt::format("{}{}", isNegative ? "-" : "", number) : "";
}

// Returns the number without what people put into one: spaces between its digits, letters that look like digits, or a
// letter for its type behind it. Empty if it is no number then either.
std::string plainNumberOf(std::string_view word) {
    std::string plain;
    for (const char each : word) {
        if (each != '_' && each != '\'') {
            plain += each == 'O' || each == 'o' ? '0' : each == 'l' || each == 'I' ? '1' : each;
        }
    }
    if (plain.size() > 1 && std::string_view("LlUuFfDdn").find(word.back()) != std::string_view::npos) {
        plain.pop_back();
    }
    if (plain.starts_with('.')) {
        plain.insert(0, "0");
    }
    return isJsonValue(plain) ? plain : "";
}

WordMistake numberMistake(std::string_view word) {
    const std::string shown = shownName(word);
    if (hasFormOfNumber(word)) {
        const bool isTooLarge = isDigit(word.back());
        return {shown + (isTooLarge ? " is too large for a number" : " is a number that ends too early"),
                isTooLarge ? "write a smaller number" : "write the digits that are missing"};
    }
    const std::string decimal = decimalOf(word);
    const std::string plain = decimal.empty() ? plainNumberOf(word) : decimal;
    if (!plain.empty()) {
        return {shown + " is not written as JSON writes numbers", "write " + plain};
    }
    if (word.find_first_of("*/+%") != std::string_view::npos && word.find_last_of(kDigits) == word.size() - 1) {
        return {shown + " is not computed: JSON has numbers alone", "write the result"};
    }
    return {shown + " is no number of JSON", "write the number alone, or " + shownQuoted(word) + " if a text is meant"};
}

// Returns how many of the characters are hexadecimal digits from that place on, up to four.
std::size_t hexadecimalDigits(std::string_view text, std::size_t place) {
    std::size_t count = 0;
    while (count < 4 && place + count < text.size() && std::isxdigit(static_cast<unsigned char>(text[place + count]))) {
        ++count;
    }
    return count;
}

unsigned unitAt(std::string_view text, std::size_t place) {
    unsigned unit = 0;
    std::from_chars(text.data() + place, text.data() + place + 4, unit, 16);
    return unit;
}

std::optional<EscapeMistake> unicodeMistake(std::string_view text, std::size_t place) {
    const auto isWhole = [&](std::size_t escape) {
        return text.substr(escape, 2) == "\\u" && hexadecimalDigits(text, escape + 2) == 4;
    };
    if (!isWhole(place)) {
        const std::size_t end = place + 2 + hexadecimalDigits(text, place + 2);
        return EscapeMistake{place,
                             end,
                             {shownName(text.substr(place, end - place)) + " lacks digits: \\u has four, from 0 to F",
                              "write all four, or \\\\ for a backslash"}};
    }
    const unsigned unit = unitAt(text, place + 2);
    if (unit >= 0xD800 && unit <= 0xDBFF && !isWhole(place + 6)) {
        return EscapeMistake{place,
                             place + 6,
                             {std::string(text.substr(place, 6)) + " is the first half of a character",
                              "write its second half behind it, or the character itself"}};
    }
    return std::nullopt;
}

}  // namespace

char lookAlike(char32_t code) {
    const auto* const found = std::ranges::find_if(
        kLookAlikes, [&](const auto& each) { return each.second.find(code) != std::u32string_view::npos; });
    return found != std::end(kLookAlikes) ? found->first : '\0';
}

bool isJsonValue(std::string_view word) {
    if (!hasFormOfNumber(word)) {
        return isOneOf(word, {"true", "false", "null"});
    }
    // An exponent needs digits, and the number has to be one that a double holds.
    const std::size_t exponent = word.find_first_of("eE");
    const bool isWhole = exponent == std::string_view::npos
                             ? word != "+" && word != "." && word != "+."
                             : isDigit(word.back()) && word.find_first_of(kDigits) < exponent;
    return isWhole && (word.find_first_of(kDigits) == std::string_view::npos ||
                       !std::isinf(readNearest<double>(std::string(word))));
}

WordMistake valueMistake(std::string_view word) {
    const std::string lower = inLowerCase(word);
    const std::string shown = shownName(word);
    if (isOneOf(lower, {"true", "false", "null"})) {
        return {shown + " is written in small letters", "write " + lower};
    }
    if (isOneOf(lower, {"none", "nil", "undefined"})) {
        return {shown + " is no value of JSON", "JSON has numbers, texts in quotes, true, false and null"};
    }
    if (isOneOf(lower, {"nan", "-nan", "inf", "-inf", "+inf", "infinity", "-infinity", "+infinity"})) {
        return {shown + " is no number of JSON", "write a number, or leave it out"};
    }
    if (isOneOf(lower, {"yes", "no", "on", "off"})) {
        const bool isTrue = isOneOf(lower, {"yes", "on"});
        return {shown + " is no value of JSON",
                fmt::format("write {}, or {} if a text is meant", isTrue, inQuotes(word))};
    }
    if (isOneOf(word, {"...", "\u2026"})) {
        return {shown + " stands where something was left out", "write what is meant, or remove it"};
    }
    if (word.starts_with('<') && word.ends_with('>') && word.size() > 2) {
        return {shown + " is a placeholder that was not filled in", "write the value in its place"};
    }
    const std::size_t first = word.find_first_not_of("+-.");
    if (first != std::string_view::npos && isDigit(word[first])) {
        return numberMistake(word);
    }
    return {"the text " + shown + " lacks its quotes", "write " + shownQuoted(word), true};
}

WordMistake keyMistake(std::string_view word) {
    return {"the key " + shownName(word) + " lacks its quotes", "write " + shownQuoted(word)};
}

std::optional<EscapeMistake> escapeMistakeIn(std::string_view text) {
    for (std::size_t place = text.find('\\'); place != std::string_view::npos; place = text.find('\\', place + 2)) {
        const std::string_view escape = text.substr(place, 2);
        if (escape == "\\u") {
            if (auto mistake = unicodeMistake(text, place)) {
                return mistake;
            }
        } else if (escape.size() < 2 || std::string_view("\"/\\bfnrt").find(escape[1]) == std::string_view::npos) {
            const bool isQuote = escape == "\\'";
            return EscapeMistake{place,
                                 place + escape.size(),
                                 {shownName(escape) + " means nothing in a text",
                                  isQuote ? "write ' alone" : "write \\\\ for a backslash"}};
        }
    }
    return std::nullopt;
}

}  // namespace Brenta::OS::VIG::Tool
