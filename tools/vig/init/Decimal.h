#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// It is a number from 0 up as people write it, without the error of a double.
class Decimal {
  public:
    static constexpr std::int64_t kMostDigits = 10'000'000'000;  // the number without its point
    static constexpr int kMostPlaces = 6;

    Decimal() = default;

    // Stands for digits / 10^places. REQUIRES: neither is negative, and there are no more than can be read, or one
    // more.
    Decimal(std::int64_t digits, int places);

    // Reads "204800" or "0.25", and takes it off the text. Returns nothing if the text does not begin with one, or if
    // it has too many digits.
    static std::optional<Decimal> readFrom(std::string_view& text);

    std::string text() const;

    // Return it times or divided by a whole number; nothing if that has too many digits.
    std::optional<Decimal> times(std::int64_t factor) const;
    std::optional<Decimal> dividedBy(std::int64_t divisor) const;

    bool isWhole() const { return places == 0; }

    // REQUIRES: it is whole.
    Decimal next() const { return {digits + 1, 0}; }

    // Return a number that is a little greater or less: by half of the last digit, or by a twentieth of the number if
    // that is less. So it lies between this one and each that somebody could have written by mistake.
    Decimal above() const;
    Decimal below() const;

    std::strong_ordering operator<=>(const Decimal& other) const;
    bool operator==(const Decimal& other) const = default;

  private:
    Decimal beside(int sign) const;

    // Without zeros at the end behind the point, so that a number has one form.
    std::int64_t digits = 0;
    int places = 0;
};

}  // namespace Brenta::OS::VIG::Tool
