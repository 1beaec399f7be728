#include "vig/parsers/JsonText.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <memory>
#include <system_error>

#include "vig/parsers/JsonTokens.h"

namespace Brenta::OS::VIG {

namespace {

constexpr std::size_t kMostTextBytes = (std::size_t{1} << 30) - 1;

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

// Moves to the token behind which the reader would begin to read a value inside of `levels` arrays and objects; false
// if there is none.
bool moveToValueBelow(unsigned levels, JsonTokens& tokens) {
    // The reader goes no further than the end of the first value.
    while (tokens.next() && tokens.depth() > 0) {
        // In an array the reader begins a value wherever the array is not closed at once, in an object after
        // the colon.
        const char kind = tokens.kind();
        if (tokens.depth() >= levels && (kind == '[' ? !tokens.isFollowedBy(']') : kind == ':')) {
            return true;
        }
    }
    return false;
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

Json::CharReaderBuilder readerBuilder() {
    Json::CharReaderBuilder builder;
    // Comments are accepted and mean nothing. To keep them, the reader searches the text before each one again.
    builder.settings_["collectComments"] = false;
    return builder;
}

// The reader's report if it finds an error. REQUIRES: the reader does not throw.
std::optional<std::string> read(const std::string& text, const Json::CharReaderBuilder& builder, Json::Value& root) {
    const std::string respelled = respellForLocale(text);
    const std::string& readable = respelled.empty() ? text : respelled;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(readable.data(), readable.data() + readable.size(), &root, &errors)) {
        return errors;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> readJson(const std::string& text, Json::Value& root) {
    Json::CharReaderBuilder builder = readerBuilder();
    if (auto report = reportOfUnreadable(text, builder.settings_["stackLimit"].asUInt())) {
        return report;
    }
    return read(text, builder, root);
}

std::optional<std::string> reportOfUnreadable(std::string_view text, unsigned levels) {
    if (text.size() > kMostTextBytes) {
        return report(text, 0, "Longer than the limit of " + std::to_string(kMostTextBytes) + " bytes.");
    }
    const std::string_view json = withoutByteOrderMark(text);
    // Most documents have fewer brackets than that in all, which is soon counted.
    if (std::count(json.begin(), json.end(), '[') + std::count(json.begin(), json.end(), '{') <
        static_cast<std::ptrdiff_t>(levels)) {
        return std::nullopt;
    }
    JsonTokens tokens(json);
    if (!moveToValueBelow(levels, tokens)) {
        return std::nullopt;
    }
    // The reader would not come so far if there is an error before, which shows when the text ends there.
    const std::string_view before = json.substr(0, tokens.offset() + tokens.token().size());
    Json::CharReaderBuilder builder = readerBuilder();
    builder.settings_["stackLimit"] = levels + 1;
    Json::Value root;
    if (auto earlier = read(std::string(before) + "0" + tokens.closingBrackets(), builder, root)) {
        return earlier;
    }
    tokens.next();
    return report(json, tokens.offset(), "Nested deeper than the limit of " + std::to_string(levels) + " levels.");
}

std::string respellForLocale(std::string_view text) {
    if (std::use_facet<std::numpunct<char>>(std::locale()).decimal_point() == '.') {
        return {};
    }
    // The mark stays, or a second one would be taken for it.
    const std::string_view json = withoutByteOrderMark(text);
    std::string respelled(text.substr(0, text.size() - json.size()));
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
