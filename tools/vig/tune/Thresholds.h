#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "vig/parsers/FilterParser.h"

namespace Brenta::OS::VIG::Tool {

// A number that a filter of a value type compares, by its place among all numbers of that type: ranks compare as the
// numbers do, and the next rank is the next number. An integer is its own rank; -0 has the rank of 0.
using Rank = std::int64_t;

Rank rankOf(std::int64_t number);

// REQUIRES: it is not NaN.
Rank rankOf(double number);

// Returns the number as a document writes it, which reads back to the same.
std::string textOf(Rank rank, FilterValueType type);

// Returns the number with the fewest digits from `low` to `high`, which belong to the range.
Rank roundestIn(Rank low, Rank high, FilterValueType type);

// Return a round number below it, or above it.
Rank roundBelow(Rank rank, FilterValueType type);
Rank roundAbove(Rank rank, FilterValueType type);

// Returns how many digits the number has, without the zeros around them.
std::size_t digitsOf(Rank rank, FilterValueType type);

// Returns the least thresholds from which on the filter says something else of that value; REQUIRES: the value stands
// on the left of the operator.
std::vector<Rank> breakpointsOf(FilterOperator op, Rank value);

// The numbers after `low` up to `high`.
struct RankRange {
    Rank low;
    Rank high;

    bool holds(Rank rank) const { return low < rank && rank <= high; }
    bool operator==(const RankRange&) const = default;
};

// It keeps different ranks, and if there are too many, some that depend on nothing but which ranks there are: neither
// on their order nor on the parts in which they come.
class RankSample {
  public:
    static constexpr std::size_t MOST = 4096;

    void add(Rank rank);
    void merge(const RankSample& other);

    // Returns false if ranks were left out.
    bool isComplete() const { return complete; }

    // Returns them in order.
    std::vector<Rank> ranks() const;

  private:
    std::set<std::pair<std::uint64_t, Rank>> kept;  // by what the rank is scattered to
    bool complete = true;
};

}  // namespace Brenta::OS::VIG::Tool
