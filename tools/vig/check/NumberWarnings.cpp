#include "tools/vig/check/Warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/document/NumberMeaning.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/NumberText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// The library reads a text like that.
struct Reading {
    std::string number;  // what came of it
    bool inRange;
    std::string_view rest;  // from where it stopped, without white space at the end
};

template <typename T>
Reading readingOf(const std::string& text) {
    const auto [nearest, isInRange, length] = readNumber<T>(text);
    std::string_view rest = std::string_view(text).substr(length);
    rest = rest.substr(0, rest.find_last_not_of(" \t\r\n") + 1);
    return {fmt::format("{}", nearest), isInRange, rest};
}

// It is a decimal number as it is written and as a double holds it, both with the same decimals.
struct Decimal {
    std::string written;
    std::string held;
};

// Gives nothing for a number with an exponent or of another base. Leading zeros are left out.
std::optional<Decimal> decimalOf(std::string_view text) {
    const std::string sign = text.find('-') != std::string_view::npos ? "-" : "";
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n+-0"), text.size()));
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    if (text.find_first_not_of("0123456789.") != std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view whole = text.substr(0, text.find('.'));
    const std::string_view decimals = text.substr(std::min(whole.size() + 1, text.size()));
    return Decimal{
        sign + (whole.empty() ? "0" : std::string(whole)) + (decimals.empty() ? "" : "." + std::string(decimals)),
        sign + fmt::format("{:.{}f}", readNearest<double>(std::string(text)), decimals.size())};
}

// Returns the unit of what the operand is compared with, or null.
const Unit* unitBeside(const OperandModel& operand, const FilterModel& filter) {
    static constexpr Unit kShare{Quantity::Share, 1, "parts of 1"};
    const OperandModel& other = &operand == &filter.operand1 ? filter.operand2 : filter.operand1;
    return isAttribute(other) ? unitOf(other.operand.value) : doubleFunctionOf(other) != nullptr ? &kShare : nullptr;
}

void appendUnread(const OperandModel& operand, const FilterModel& filter, const Reading& reading,
                  std::vector<Finding>& found) {
    const std::string& text = operand.operand.value;
    const auto meant = meaningOf(text, filter.valueType == FilterValueType::Integer, unitBeside(operand, filter));
    const std::string hint = meant ? "write " + inQuotes(meant->number) + meant->more
                                   : "write " + inQuotes(reading.number) + " if that is meant";
    warn(found, "number-text", operand.place,
         shownQuoted(text) + " is read as " + reading.number + "; " + shownQuoted(reading.rest) + " is ignored", hint);
}

void appendImprecise(const OperandModel& operand, std::vector<Finding>& found) {
    const auto decimal = decimalOf(operand.operand.value);
    if (decimal && decimal->held != decimal->written) {
        warn(found, "number-text", operand.place,
             shownQuoted(operand.operand.value) + " has more digits than a double holds, and is read as " +
                 shownName(decimal->held),
             "write fewer digits, or compare an int64 attribute as \"integer\"");
    }
}

Reading readingOf(const OperandModel& operand, FilterValueType type) {
    const std::string& text = operand.operand.value;
    return type == FilterValueType::Integer ? readingOf<std::int64_t>(text) : readingOf<double>(text);
}

void appendNumberWarning(const OperandModel& operand, const FilterModel& filter, std::vector<Finding>& found) {
    const Reading reading = readingOf(operand, filter.valueType);
    if (!reading.rest.empty()) {
        appendUnread(operand, filter, reading, found);
    } else if (!reading.inRange) {
        warn(found, "number-text", operand.place,
             shownQuoted(operand.operand.value) + " is no number within the range, and is read as " + reading.number,
             "write a number");
    } else if (filter.valueType == FilterValueType::Double) {
        appendImprecise(operand, found);
    }
}

}  // namespace

void appendNumberWarnings(const FilterModel& filter, std::vector<Finding>& found) {
    if (filter.valueType == FilterValueType::String) {
        return;
    }
    for (const OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
        if (isConstant(*operand)) {
            appendNumberWarning(*operand, filter, found);
        }
    }
}

bool isReadWhole(const FilterModel& filter) {
    return filter.valueType == FilterValueType::String ||
           std::ranges::none_of(std::initializer_list<const OperandModel*>{&filter.operand1, &filter.operand2},
                                [&](const OperandModel* operand) {
                                    return isConstant(*operand) && !readingOf(*operand, filter.valueType).rest.empty();
                                });
}

}  // namespace Brenta::OS::VIG::Tool
