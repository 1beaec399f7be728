#include "tools/vig/tune/Thresholds.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <iterator>
#include <limits>
#include <numeric>

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();

double doubleAt(Rank rank) {
    return std::bit_cast<double>(rank >= 0 ? rank : kLeast - rank);
}

// REQUIRES: 0 < low <= high.
std::int64_t roundestInteger(std::int64_t low, std::int64_t high) {
    for (std::int64_t step = 1'000'000'000'000'000'000; step > 1; step /= 10) {
        const std::int64_t multiple = high / step * step;
        if (multiple >= low) {
            // The lowest one of as few digits is as good, and nearer to where the range begins.
            return low + (step - low % step) % step;
        }
    }
    return low;
}

Rank roundestDouble(Rank low, Rank high) {
    const double least = doubleAt(low);
    const double most = doubleAt(high);
    constexpr int kEnough = std::numeric_limits<double>::max_digits10;
    for (int digits = 1; digits < kEnough; ++digits) {
        // Among the numbers with so many digits, one that is in the range is the nearest one to an end or to the
        // middle.
        for (const double near : {least, most, std::midpoint(least, most)}) {
            const std::string text = fmt::format("{:.{}e}", near, digits - 1);
            double rounded = std::numeric_limits<double>::quiet_NaN();
            std::from_chars(text.data(), text.data() + text.size(), rounded);
            if (least <= rounded && rounded <= most) {
                return rankOf(rounded);
            }
        }
    }
    return low;
}

// Returns another number for each number, spread evenly.
std::uint64_t scattered(Rank rank) {
    auto bits = static_cast<std::uint64_t>(rank);
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31);
}

}  // namespace

Rank rankOf(std::int64_t number) {
    return number;
}

Rank rankOf(double number) {
    const auto bits = std::bit_cast<std::int64_t>(number);
    return bits >= 0 ? bits : kLeast - bits;
}

std::string textOf(Rank rank, FilterValueType type) {
    return type == FilterValueType::Integer ? fmt::format("{}", rank) : fmt::format("{}", doubleAt(rank));
}

Rank roundestIn(Rank low, Rank high, FilterValueType type) {
    if (low <= 0 && 0 <= high) {
        return 0;
    }
    if (type != FilterValueType::Integer) {
        return roundestDouble(low, high);
    }
    return low > 0 ? roundestInteger(low, high) : -roundestInteger(-high, -std::max(low, -kMost));
}

// Twice as far from 0 is far enough for a round number to lie between.
Rank roundBelow(Rank rank, FilterValueType type) {
    if (rank > 0) {
        return 0;
    }
    if (type == FilterValueType::Integer) {
        return roundestIn(rank < kLeast / 2 ? kLeast : std::min<Rank>(2 * rank, -1), std::max(rank, kLeast + 1) - 1,
                          type);
    }
    const double number = doubleAt(rank);
    const double bound = std::max(std::min(2 * number, -1.0), std::numeric_limits<double>::lowest());
    return rankOf(bound) < rank ? roundestIn(rankOf(bound), rank - 1, type) : rank;
}

Rank roundAbove(Rank rank, FilterValueType type) {
    return -roundBelow(-std::max(rank, -kMost), type);
}

std::size_t digitsOf(Rank rank, FilterValueType type) {
    const std::string text = textOf(rank, type);
    std::string digits;
    std::ranges::copy_if(text.substr(0, text.find('e')), std::back_inserter(digits),
                         [](char each) { return '0' <= each && each <= '9'; });
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? 0 : digits.find_last_not_of('0') - first + 1;
}

std::vector<Rank> breakpointsOf(FilterOperator op, Rank value) {
    const bool atValue = op != FilterOperator::GreaterEqual && op != FilterOperator::Less;
    const bool afterValue = op != FilterOperator::Greater && op != FilterOperator::LessEqual && value < kMost;
    std::vector<Rank> breakpoints;
    if (atValue) {
        breakpoints.push_back(value);
    }
    if (afterValue) {
        breakpoints.push_back(value + 1);
    }
    return breakpoints;
}

void RankSample::add(Rank rank) {
    const std::pair each{scattered(rank), rank};
    if (kept.size() == MOST && *kept.rbegin() < each) {
        complete = false;
        return;
    }
    kept.insert(each);
    if (kept.size() > MOST) {
        kept.erase(std::prev(kept.end()));
        complete = false;
    }
}

void RankSample::merge(const RankSample& other) {
    complete = complete && other.complete;
    for (const auto& [place, rank] : other.kept) {
        add(rank);
    }
}

std::vector<Rank> RankSample::ranks() const {
    std::vector<Rank> all;
    std::ranges::transform(kept, std::back_inserter(all), [](const auto& each) { return each.second; });
    std::ranges::sort(all);
    return all;
}

}  // namespace Brenta::OS::VIG::Tool
