#include "vig/parsers/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <system_error>

namespace Brenta::OS::VIG {

namespace {

constexpr std::size_t kMostTextBytes = (std::size_t{1} << 30) - 1;

// Splits text where the reader splits it, as far as the text is valid: white space and comments separate
// tokens, a token is a bracket, a comma, a colon, a string or a run of anything else.
class JsonTokens {
  public:
    explicit JsonTokens(std::string_view json) : text(json) {}

    // Moves to the next token; false at the end of the text.
    bool next() {
        skipSeparators();
        begin = position;
        if (position == text.size()) {
            return false;
        }
        if (text[position] == '"') {
            skipString();
        } else if (isPunctuation(text[position])) {
            ++position;
        } else {
            skipRun();
        }
        return true;
    }

    // The kind of token: its first character.
    char kind() const { return text[begin]; }
    std::string_view token() const { return text.substr(begin, position - begin); }
    std::size_t offset() const { return begin; }

    // Whether the next character that is not white space is `character`; comments are not skipped.
    bool isFollowedBy(char character) const {
        const std::size_t place = text.find_first_not_of(kWhiteSpace, position);
        return place != std::string_view::npos && text[place] == character;
    }

  private:
    static constexpr std::string_view kWhiteSpace = " \t\r\n";

    static bool isPunctuation(char character) {
        return std::string_view("[]{},:").find(character) != std::string_view::npos;
    }

    bool isAt(std::string_view mark) const { return text.substr(position, mark.size()) == mark; }

    void moveTo(std::size_t place) { position = std::min(place, text.size()); }

    void skipSeparators() {
        for (;;) {
            moveTo(text.find_first_not_of(kWhiteSpace, position));
            if (isAt("/*")) {
                const std::size_t end = text.find("*/", position + 2);
                moveTo(end == std::string_view::npos ? end : end + 2);
            } else if (isAt("//")) {
                moveTo(text.find_first_of("\r\n", position));
            } else {
                return;
            }
        }
    }

    void skipString() {
        ++position;
        while (position < text.size() && text[position] != '"') {
            moveTo(position + (text[position] == '\\' ? 2 : 1));
        }
        moveTo(position + 1);
    }

    void skipRun() { moveTo(text.find_first_of(" \t\r\n[]{},:\"/", position + 1)); }

    const std::string_view text;
    std::size_t position = 0;
    std::size_t begin = 0;
};

std::string_view withoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

// Lines and columns are counted as the reader counts them: from 1, in bytes, and "\r\n" is one line end.
std::string report(std::string_view text, std::size_t offset, const std::string& message) {
    std::size_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t place = 0; place < offset; ++place) {
        if (text[place] == '\n' || (text[place] == '\r' && text.substr(place + 1, 1) != "\n")) {
            ++line;
            lineStart = place + 1;
        }
    }
    return "* Line " + std::to_string(line) + ", Column " + std::to_string(offset - lineStart + 1) + "\n  " + message +
           "\n";
}

// The offset of the first value inside of `levels` arrays and objects that the reader would begin to read.
// A bracket of the wrong kind needs no care: the reader goes no deeper after an error.
std::optional<std::size_t> findValueBelow(unsigned levels, std::string_view text) {
    JsonTokens tokens(text);
    unsigned depth = 0;
    while (tokens.next()) {
        const char kind = tokens.kind();
        if (kind == '[' || kind == '{') {
            ++depth;
        } else if (depth == 0 || ((kind == ']' || kind == '}') && --depth == 0)) {
            return std::nullopt;  // the reader goes no further than the end of the first value
        }
        // In an array the reader begins a value wherever the array is not closed at once, in an object after
        // the colon.
        if (depth >= levels && (kind == '[' ? !tokens.isFollowedBy(']') : kind == ':')) {
            tokens.next();
            return tokens.offset();
        }
    }
    return std::nullopt;
}

// How far the token reaches that the reader takes for a number, in text that begins with one.
std::size_t numberLength(std::string_view text) {
    const auto skip = [&](std::size_t place, std::string_view characters) {
        return std::min(text.find_first_not_of(characters, place), text.size());
    };
    constexpr std::string_view kDigits = "0123456789";
    std::size_t end = skip(1, kDigits);
    if (text.substr(end, 1) == ".") {
        end = skip(end + 1, kDigits);
    }
    if (text.substr(end, 1) == "e" || text.substr(end, 1) == "E") {
        ++end;
        end = skip(text.substr(end, 1) == "+" || text.substr(end, 1) == "-" ? end + 1 : end, kDigits);
    }
    return end;
}

// The exponent written in `digits`, a sign included; empty if it is none. One so large that the number is 0 or
// beyond the range of any double, however many digits it has, is made smaller.
std::optional<std::int64_t> readExponent(std::string_view digits) {
    constexpr std::int64_t kBeyondAnyNumber = 1'000'000'000'000;
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    std::int64_t exponent = 0;
    const char* const end = digits.data() + digits.size();
    const auto [read, failure] = std::from_chars(digits.data(), end, exponent);
    if (read != end || failure == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (failure == std::errc::result_out_of_range) {
        return digits.starts_with('-') ? -kBeyondAnyNumber : kBeyondAnyNumber;
    }
    return std::clamp(exponent, -kBeyondAnyNumber, kBeyondAnyNumber);
}

// The number without its decimal point. A number with an exponent that is none stays as wrong as it was.
std::string respellNumber(std::string_view number) {
    const std::size_t point = number.find('.');
    if (point == std::string_view::npos) {
        return std::string(number);
    }
    const std::size_t mantissaEnd = std::min(number.find_first_of("eE", point), number.size());
    const std::string mantissa =
        std::string(number.substr(0, point)) + std::string(number.substr(point + 1, mantissaEnd - point - 1));
    const auto exponent = mantissaEnd < number.size() ? readExponent(number.substr(mantissaEnd + 1)) : 0;
    if (!exponent) {
        return mantissa + std::string(number.substr(mantissaEnd));
    }
    const auto decimals = static_cast<std::int64_t>(mantissaEnd - point - 1);
    return mantissa + "e" + std::to_string(*exponent - decimals);
}

}  // namespace

std::optional<std::string> reportOfUnreadable(std::string_view text, unsigned levels) {
    if (text.size() > kMostTextBytes) {
        return report(text, 0, "Longer than the limit of " + std::to_string(kMostTextBytes) + " bytes.");
    }
    const std::string_view json = withoutByteOrderMark(text);
    if (const auto offset = findValueBelow(levels, json)) {
        return report(json, *offset, "Nested deeper than the limit of " + std::to_string(levels) + " levels.");
    }
    return std::nullopt;
}

std::string respellForLocale(std::string_view text) {
    if (std::use_facet<std::numpunct<char>>(std::locale()).decimal_point() == '.') {
        return {};
    }
    const std::string_view json = withoutByteOrderMark(text);
    std::string respelled;
    std::size_t copied = 0;
    for (JsonTokens tokens(json); tokens.next(); copied = tokens.offset() + tokens.token().size()) {
        respelled += json.substr(copied, tokens.offset() - copied);
        const std::string_view token = tokens.token();
        const bool isNumber = std::string_view("+-0123456789").find(token[0]) != std::string_view::npos;
        const std::size_t length = isNumber ? numberLength(token) : 0;
        respelled += respellNumber(token.substr(0, length));
        respelled += token.substr(length);
    }
    respelled += json.substr(copied);
    return respelled;
}

}  // namespace Brenta::OS::VIG
