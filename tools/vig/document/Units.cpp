#include "tools/vig/document/Units.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <string>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr double kKilo = stepOf(Quantity::Memory);

// The names of attributes in it end like that, or are just that.
struct NamedUnit {
    std::string_view ending;
    Unit unit;
};

constexpr NamedUnit kUnits[] = {
    {"Bytes", {Quantity::Memory, 1, "bytes"}},
    {"KB", {Quantity::Memory, kKilo, "kB"}},
    {"MB", {Quantity::Memory, kKilo* kKilo, "MB"}},
    {"Ms", {Quantity::Time, 1, "ms"}},
    {"Seconds", {Quantity::Time, stepOf(Quantity::Time), "s"}},
    {"Percent", {Quantity::Share, 0.01, "percent"}},
    {"cpuAvgUtilization", {Quantity::Share, 0.01, "percent"}},
    {"Share", {Quantity::Share, 1, "parts of 1"}},
};

// It is what people write behind a number, in small letters.
struct Suffix {
    std::string_view text;
    Unit unit;
};

constexpr double kSecond = stepOf(Quantity::Time);
constexpr double kMinute = 60 * kSecond;
constexpr double kHour = 60 * kMinute;

constexpr Suffix kSuffixes[] = {
    {"b", {Quantity::Memory, 1, "bytes"}},
    {"byte", {Quantity::Memory, 1, "bytes"}},
    {"bytes", {Quantity::Memory, 1, "bytes"}},
    {"k", {Quantity::Memory, kKilo, "kB"}},
    {"kb", {Quantity::Memory, kKilo, "kB"}},
    {"kib", {Quantity::Memory, kKilo, "kB"}},
    {"m", {Quantity::Memory, kKilo* kKilo, "MB"}},
    {"mb", {Quantity::Memory, kKilo* kKilo, "MB"}},
    {"mib", {Quantity::Memory, kKilo* kKilo, "MB"}},
    {"g", {Quantity::Memory, kKilo* kKilo* kKilo, "GB"}},
    {"gb", {Quantity::Memory, kKilo* kKilo* kKilo, "GB"}},
    {"gib", {Quantity::Memory, kKilo* kKilo* kKilo, "GB"}},
    {"us", {Quantity::Time, 0.001, "us"}},
    {"ms", {Quantity::Time, 1, "ms"}},
    {"s", {Quantity::Time, kSecond, "s"}},
    {"sec", {Quantity::Time, kSecond, "s"}},
    {"seconds", {Quantity::Time, kSecond, "s"}},
    {"m", {Quantity::Time, kMinute, "minutes"}},
    {"min", {Quantity::Time, kMinute, "minutes"}},
    {"minutes", {Quantity::Time, kMinute, "minutes"}},
    {"h", {Quantity::Time, kHour, "hours"}},
    {"hours", {Quantity::Time, kHour, "hours"}},
    {"%", {Quantity::Share, 0.01, "%"}},
    {"percent", {Quantity::Share, 0.01, "percent"}},
};

constexpr std::string_view kMemoryNames[] = {"bytes", "kB", "MB", "GB"};
constexpr std::string_view kTimeNames[] = {"ms", "s"};

}  // namespace

const Unit* unitOf(std::string_view attribute) {
    const auto* const found =
        std::ranges::find_if(kUnits, [&](const NamedUnit& each) { return attribute.ends_with(each.ending); });
    return found == std::end(kUnits) ? nullptr : &found->unit;
}

const Unit* unitNamed(std::string_view name, Quantity quantity) {
    const std::string lower = inLowerCase(name);
    const auto* const found = std::ranges::find_if(
        kSuffixes, [&](const Suffix& each) { return each.text == lower && each.unit.quantity == quantity; });
    return found == std::end(kSuffixes) ? nullptr : &found->unit;
}

std::string shownIn(const Unit& unit, double number) {
    double amount = number * unit.size;
    if (unit.quantity == Quantity::Share) {
        return shownNumber(amount * 100) + " %";
    }
    std::span<const std::string_view> names = kTimeNames;
    if (unit.quantity == Quantity::Memory) {
        names = kMemoryNames;
    }
    for (; names.size() > 1 && std::abs(amount) >= stepOf(unit.quantity); names = names.subspan(1)) {
        amount /= stepOf(unit.quantity);
    }
    return shownNumber(amount) + " " + std::string(names.front());
}

std::string shownNumber(double number) {
    constexpr double kManyDigits = 1e5;
    constexpr double kMostPlain = 1e15;
    const bool isPlain = std::abs(number) >= kManyDigits && std::abs(number) < kMostPlain;
    return isPlain ? fmt::format("{:.0f}", number) : fmt::format("{:.6g}", number);
}

}  // namespace Brenta::OS::VIG::Tool
