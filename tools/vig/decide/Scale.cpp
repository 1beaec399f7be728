#include "tools/vig/decide/Scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <string_view>

#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr auto kLeastInteger = std::numeric_limits<std::int64_t>::min();
constexpr auto kGreatestInteger = std::numeric_limits<std::int64_t>::max();

// Code points are ordered as their encodings are, but for those that have none.
constexpr char32_t kLastCodePoint = 0x10FFFF;

std::string encoded(char32_t point) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80 | (point >> shift & 0x3F)); };
    if (point < 0x80) {
        return {static_cast<char>(point)};
    }
    if (point < 0x800) {
        return {static_cast<char>(0xC0 | point >> 6), tail(0)};
    }
    if (point < 0x10000) {
        return {static_cast<char>(0xE0 | point >> 12), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0 | point >> 18), tail(12), tail(6), tail(0)};
}

bool isWellFormed(const std::string& text) {
    return replaceInvalidUtf8(text) == text;
}

// Returns the least well-formed text above one that begins with a well-formed part of that size.
std::optional<std::string> textAbove(const std::string& text, std::size_t wellFormed) {
    const std::string_view rest = std::string_view(text).substr(wellFormed);
    char32_t low = 0;
    char32_t high = kLastCodePoint + 1;
    while (low < high) {
        const char32_t middle = low + (high - low) / 2;
        (encoded(middle) > rest ? high : low) = encoded(middle) > rest ? middle : middle + 1;
    }
    if (0xD800 <= low && low < 0xE000) {
        low = 0xE000;
    }
    if (low <= kLastCodePoint) {
        return text.substr(0, wellFormed) + encoded(low);
    }
    while (wellFormed > 0 && (static_cast<unsigned char>(text[--wellFormed]) & 0xC0) == 0x80) {
    }
    // Nothing follows the last character, so that the one before it has to be another one.
    return rest.size() == text.size() ? std::nullopt : textAbove(text, wellFormed);
}

std::optional<Value> textAbove(const std::string& text) {
    if (isWellFormed(text)) {
        return text + '\0';
    }
    // What is ill-formed is replaced by a character whose first bytes may be the same.
    const std::string mended = replaceInvalidUtf8(text);
    const auto difference = std::ranges::mismatch(text, mended).in2 - mended.begin();
    return textAbove(text, characterStart(mended, static_cast<std::size_t>(difference)));
}

bool isPossible(const Value& value, Values which) {
    if (const auto* const number = std::get_if<double>(&value)) {
        return which == Values::All || std::isfinite(*number);
    }
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr || (!text->empty() && (which == Values::All || isWellFormed(*text)));
}

}  // namespace

Value absentValue(FilterValueType type) {
    return type == FilterValueType::Integer  ? Value(std::int64_t{0})
           : type == FilterValueType::Double ? Value(0.0)
                                             : Value(std::string());
}

Value leastValue(FilterValueType type, Values which) {
    switch (type) {
        case FilterValueType::Integer:
            return kLeastInteger;
        case FilterValueType::Double:
            return which == Values::All ? -kInfinity : std::numeric_limits<double>::lowest();
        case FilterValueType::String:
            break;
    }
    return std::string(1, '\0');
}

std::optional<Value> valueAbove(const Value& value, Values which) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return which == Values::All ? *text + '\0' : textAbove(*text);
    }
    if (const auto* const number = std::get_if<double>(&value)) {
        const Value above = std::nextafter(*number, kInfinity);
        return *number < kInfinity && isPossible(above, which) ? std::optional(above) : std::nullopt;
    }
    const std::int64_t number = std::get<std::int64_t>(value);
    return number == kGreatestInteger ? std::nullopt : std::optional<Value>(number + 1);
}

bool compares(FilterOperator op, const Value& left, const Value& right) {
    switch (op) {
        case FilterOperator::Equal:
            return left == right;
        case FilterOperator::NotEqual:
            return left != right;
        case FilterOperator::Greater:
            return left > right;
        case FilterOperator::Less:
            return left < right;
        case FilterOperator::GreaterEqual:
            return left >= right;
        case FilterOperator::LessEqual:
            break;
    }
    return left <= right;
}

Scale::Scale(FilterValueType type) : kind(type) {
    if (type == FilterValueType::Double) {
        constants = {-kInfinity, kInfinity};
    }
}

void Scale::add(const Value& constant) {
    const auto* const number = std::get_if<double>(&constant);
    if (number == nullptr || !std::isnan(*number)) {
        constants.push_back(constant);
    }
}

void Scale::settle() {
    std::ranges::sort(constants);
    constants.erase(std::unique(constants.begin(), constants.end()), constants.end());
    for (const auto& [which, counts] : {std::pair(Values::Recordable, &recordable), std::pair(Values::All, &all)}) {
        counts->assign(1, 0);
        for (Cell cell = 0; cell < cellCount(); ++cell) {
            counts->push_back(counts->back() + (hasValue(cell, which) ? 1 : 0));
        }
    }
}

Scale::Cell Scale::cellOf(const Value& value) const {
    const auto place = std::ranges::lower_bound(constants, value);
    const bool isConstant = place != constants.end() && *place == value;
    return static_cast<Cell>(2 * (place - constants.begin()) + (isConstant ? 1 : 0));
}

bool Scale::hasValue(Cell cell, Values which) const {
    const std::size_t place = cell / 2;
    if (cell % 2 == 1) {
        return isPossible(constants[place], which);
    }
    const auto least = place == 0 ? std::optional(leastValue(kind, which)) : valueAbove(constants[place - 1], which);
    return least && (place == constants.size() || *least < constants[place]);
}

bool Scale::haveValue(Cell first, Cell last, Values which) const {
    const auto& counts = which == Values::Recordable ? recordable : all;
    return first < last && counts[first] < counts[last];
}

bool Scale::isIn(const Value& value, Cell first, Cell last, Values which) const {
    const Cell cell = cellOf(value);
    return first <= cell && cell < last && isPossible(value, which);
}

std::optional<Value> Scale::leastFrom(const Value& bound, Cell first, Cell last, Values which) const {
    std::optional<Value> least = bound;
    for (Cell cell = std::max(first, cellOf(bound)); cell < last && least; ++cell) {
        if (cell % 2 == 1 && *least < constants[cell / 2]) {
            least = constants[cell / 2];
        } else if (cell % 2 == 0 && cell > 0 && *least <= constants[cell / 2 - 1]) {
            least = valueAbove(constants[cell / 2 - 1], which);
        }
        if (least && isIn(*least, first, last, which)) {
            return least;
        }
    }
    return std::nullopt;
}

std::optional<Value> Scale::pick(Cell first, Cell last) const {
    for (const Value& each : plainValues(first, last)) {
        if (isIn(each, first, last, Values::Recordable)) {
            return each;
        }
    }
    return leastFrom(leastValue(kind, Values::Recordable), first, last, Values::Recordable);
}

// Returns values near the constants on both sides of the cells, the lower one first, and others that are plain. Some
// may be in other cells.
std::vector<Value> Scale::plainValues(Cell first, Cell last) const {
    std::vector<Value> values;
    const auto addNear = [&](std::size_t place, int step) {
        const Value& constant = constants[place];
        values.push_back(constant);
        if (const auto* const number = std::get_if<double>(&constant)) {
            values.emplace_back(std::round(*number + step) + 0.0);  // which makes no -0
            values.emplace_back(*number + step);
            values.emplace_back(*number + step / 8.0);
        } else if (const auto* const whole = std::get_if<std::int64_t>(&constant)) {
            // A step beyond the greatest integer comes out below, which is in other cells.
            values.emplace_back(
                static_cast<std::int64_t>(static_cast<std::uint64_t>(*whole) + static_cast<std::uint64_t>(step)));
        }
    };
    const auto isBound = [&](std::size_t place) {
        return place < constants.size() && isPossible(constants[place], Values::Recordable);
    };
    if (kind == FilterValueType::String) {
        for (const char* const name : {"app", "camera", "launcher", "system"}) {
            values.emplace_back(std::string(name));
        }
    }
    if (first > 0 && isBound((first - 1) / 2)) {
        addNear((first - 1) / 2, 1);
    }
    if (kind == FilterValueType::String) {
        const std::string below = first > 0 ? std::get<std::string>(constants[(first - 1) / 2]) : "";
        for (const char* const ending : {"a", "A", "0", "!", " "}) {
            values.emplace_back(below + ending);
        }
    }
    if (isBound((last - 1) / 2)) {
        addNear((last - 1) / 2, -1);
    }
    if (kind == FilterValueType::Double && first > 0 && isBound((first - 1) / 2) && isBound((last - 1) / 2)) {
        values.emplace_back(
            std::midpoint(std::get<double>(constants[(first - 1) / 2]), std::get<double>(constants[(last - 1) / 2])));
    }
    for (const std::int64_t plain : {1, 0, -1}) {
        if (kind == FilterValueType::Integer) {
            values.emplace_back(plain);
        } else if (kind == FilterValueType::Double) {
            values.emplace_back(static_cast<double>(plain));
        }
    }
    return values;
}

std::optional<Scale::Bound> Scale::lowerBound(Cell first) const {
    const bool isConstant = first % 2 == 1;
    return first == 0 ? std::nullopt : std::optional(Bound{constants[(first - 1) / 2], isConstant});
}

std::optional<Scale::Bound> Scale::upperBound(Cell last) const {
    const bool isConstant = last % 2 == 0;
    return last == cellCount() ? std::nullopt : std::optional(Bound{constants[(last - 1) / 2], isConstant});
}

}  // namespace Brenta::OS::VIG::Tool
