#include "tools/vig/init/Decimal.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace Brenta::OS::VIG::Tool {

namespace {

std::int64_t powerOfTen(int exponent) {
    std::int64_t power = 1;
    for (; exponent > 0; --exponent) {
        power *= 10;
    }
    return power;
}

}  // namespace

Decimal::Decimal(std::int64_t number, int behindPoint) : digits(number), places(behindPoint) {
    for (; places > 0 && digits % 10 == 0; --places) {
        digits /= 10;
    }
}

std::optional<Decimal> Decimal::readFrom(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
    const std::string_view number = text.substr(0, end);
    const std::size_t point = number.find('.');
    std::string digits(number.substr(0, point));
    const std::string_view behind = point == std::string_view::npos ? std::string_view() : number.substr(point + 1);
    digits += behind;
    std::int64_t read = 0;
    const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), read);
    if (point == 0 || (point != std::string_view::npos && behind.empty()) || error != std::errc() ||
        last != digits.data() + digits.size() || behind.size() > kMostPlaces || read > kMostDigits) {
        return std::nullopt;
    }
    text.remove_prefix(end);
    return Decimal(read, static_cast<int>(behind.size()));
}

std::string Decimal::text() const {
    std::string all = std::to_string(digits);
    if (places > 0) {
        const auto behind = static_cast<std::size_t>(places);
        all.insert(0, all.size() > behind ? 0 : behind + 1 - all.size(), '0');
        all.insert(all.size() - behind, 1, '.');
    }
    return all;
}

std::optional<Decimal> Decimal::times(std::int64_t factor) const {
    if (digits > std::numeric_limits<std::int64_t>::max() / factor) {
        return std::nullopt;
    }
    const Decimal product(digits * factor, places);
    return product.digits > kMostDigits ? std::nullopt : std::optional(product);
}

std::optional<Decimal> Decimal::dividedBy(std::int64_t divisor) const {
    for (int more = 0; places + more <= kMostPlaces; ++more) {
        const std::int64_t power = powerOfTen(more);
        if (digits <= kMostDigits && digits * power % divisor == 0) {
            return Decimal(digits * power / divisor, places + more);
        }
    }
    return std::nullopt;
}

Decimal Decimal::above() const {
    return beside(1);
}

Decimal Decimal::below() const {
    return beside(-1);
}

Decimal Decimal::beside(int sign) const {
    const std::int64_t little = digits == 0 ? 50 : std::min<std::int64_t>(50, 5 * digits);
    return {digits * 100 + sign * little, places + 2};
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const {
    const int most = std::max(places, other.places);
    return digits * powerOfTen(most - places) <=> other.digits * powerOfTen(most - other.places);
}

}  // namespace Brenta::OS::VIG::Tool
