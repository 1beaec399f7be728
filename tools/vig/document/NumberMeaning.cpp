#include "tools/vig/document/NumberMeaning.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr double kMostExact = 0x1p53;

std::string_view trimmed(std::string_view text) {
    text = text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// Tells whether the text is digits with the separator before each three of them: 1,234,567.
bool isGrouped(std::string_view text, char separator) {
    const std::size_t first = text.find(separator);
    if (first == 0 || first == std::string_view::npos || first > 3 || (text.size() - first) % 4 != 0 ||
        text.starts_with('0')) {
        return false;
    }
    for (std::size_t place = 0; place < text.size(); ++place) {
        const bool isSeparator = place >= first && (place - first) % 4 == 0;
        if (isSeparator ? text[place] != separator : text[place] < '0' || text[place] > '9') {
            return false;
        }
    }
    return true;
}

std::string without(std::string_view text, std::string_view characters) {
    std::string result(text);
    std::erase_if(result, [&](char each) { return characters.find(each) != std::string_view::npos; });
    return result;
}

// Returns the number without the separators that people put into it, with a decimal point.
std::string plain(std::string_view text) {
    for (const char separator : {',', '.', '_', '\'', ' '}) {
        const std::size_t point = text.find_last_of(separator == '.' ? "," : ".");
        const bool hasDecimals = point != std::string_view::npos && point > text.find_last_of(separator);
        if (isGrouped(text.substr(0, hasDecimals ? point : text.size()), separator)) {
            std::string result = without(text.substr(0, hasDecimals ? point : text.size()), {&separator, 1});
            return hasDecimals ? result + "." + std::string(text.substr(point + 1)) : result;
        }
    }
    std::string result = without(text, "_'");
    std::ranges::replace(result, ',', '.');
    return result;
}

// Returns nothing if the whole text is no number.
std::optional<double> valueOf(const std::string& text) {
    const auto [value, isInRange, length] = readNumber<double>(text);
    return isInRange && length == text.size() && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<std::string> asNumber(double value, bool isInteger) {
    if (!isInteger) {
        return shownNumber(value);
    }
    const double whole = std::round(value);
    return std::abs(whole) < kMostExact ? std::optional(fmt::format("{:.0f}", whole)) : std::nullopt;
}

std::optional<NumberMeaning> withUnit(double value, std::string_view suffix, bool isInteger, const Unit* unit) {
    const Unit* const written = unit == nullptr ? nullptr : unitNamed(suffix, unit->quantity);
    if (written == nullptr) {
        return std::nullopt;
    }
    const double exact = value * written->size / unit->size;
    const bool isRounded = isInteger && exact != std::round(exact);
    if (isRounded && (std::round(exact) == 0 || written->size == unit->size)) {
        return std::nullopt;
    }
    const auto number = asNumber(exact, isInteger);
    if (!number || written->size == unit->size) {
        return number ? std::optional(NumberMeaning{*number, ": the number is in " + std::string(unit->name) + " here"})
                      : std::nullopt;
    }
    return NumberMeaning{
        *number,
        ": " + shownNumber(value) + " " + std::string(written->name) + (isRounded ? " is about " : " is ") + *number +
            (unit->size == 1 && unit->quantity == Quantity::Share ? "" : " " + std::string(unit->name)) + " here"};
}

}  // namespace

std::optional<NumberMeaning> meaningOf(const std::string& text, bool isInteger, const Unit* unit) {
    const std::string_view whole = trimmed(text);
    const std::size_t slash = whole.find('/');
    if (!isInteger && slash != std::string_view::npos) {
        const auto part = valueOf(plain(trimmed(whole.substr(0, slash))));
        const auto all = valueOf(plain(trimmed(whole.substr(slash + 1))));
        return part && all && *all != 0 ? std::optional(NumberMeaning{shownNumber(*part / *all), {}}) : std::nullopt;
    }
    // A hexadecimal number and one with an exponent have letters, too.
    const auto asWhole = valueOf(plain(whole));
    const std::size_t end = std::min(whole.find_first_not_of("+-0123456789.,_' "), whole.size());
    const auto value = asWhole ? asWhole : valueOf(plain(trimmed(whole.substr(0, end))));
    if (!value) {
        return std::nullopt;
    }
    if (!asWhole) {
        return withUnit(*value, trimmed(whole.substr(end)), isInteger, unit);
    }
    const auto number = asNumber(*value, isInteger);
    if (!number) {
        return std::nullopt;
    }
    const bool isCut = isInteger && *value != std::round(*value);
    const bool isEither = !isInteger && isGrouped(whole, ',') && whole.find(',') == whole.find_last_of(',');
    const std::string below = fmt::format("{:.0f}", std::floor(*value));
    const std::string above = fmt::format("{:.0f}", std::ceil(*value));
    return NumberMeaning{isCut ? below : *number,
                         isCut      ? " or " + inQuotes(above) + ": an integer has no decimals"
                         : isEither ? ", or " + inQuotes(without(whole, ",").insert(whole.find(','), ".")) +
                                          " if the comma begins the decimals"
                                    : ""};
}

}  // namespace Brenta::OS::VIG::Tool
