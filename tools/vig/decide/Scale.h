#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "vig/parsers/FilterParser.h"

namespace Brenta::OS::VIG::Tool {

// It is what filters compare: of a document or an event. Values of one type are ordered as the library orders them; -0
// equals 0, strings are ordered by their bytes, and NaN is none.
using Value = std::variant<std::int64_t, double, std::string>;

// Returns what a filter of that type reads of an attribute that is not there: 0 or the empty text.
Value absentValue(FilterValueType type);

bool compares(FilterOperator op, const Value& left, const Value& right);

// They say of what values is spoken: of those that a record can hold, or also of infinities and texts that are no
// UTF-8.
enum class Values { Recordable, All };

// Return the least value of the type, and the least one above, if there is one. An empty text is none: an attribute
// that has it counts as absent.
Value leastValue(FilterValueType type, Values which);
std::optional<Value> valueAbove(const Value& value, Values which);

// A machine sees of a value only how it lies to the constants that it is compared with. So the values of an attribute
// fall into cells: each constant is one, and so is each gap between neighbours, at the even numbers, before the first
// and behind the last. Infinities are constants of every scale of doubles.
class Scale {
  public:
    using Cell = std::uint32_t;

    explicit Scale(FilterValueType type);

    // Adds a constant, unless it is NaN. Cells are numbered anew.
    void add(const Value& constant);

    // Is to be called after the last add() and before what follows.
    void settle();

    FilterValueType type() const { return kind; }
    Cell cellCount() const { return static_cast<Cell>(2 * constants.size() + 1); }

    Cell cellOf(const Value& value) const;

    // Tells whether the cells from `first` until before `last` hold any value.
    bool haveValue(Cell first, Cell last, Values which) const;

    // Returns the least value in those cells that is not below `bound`, if any.
    std::optional<Value> leastFrom(const Value& bound, Cell first, Cell last, Values which) const;

    // Return the constants between which those cells lie; nothing where they go on for ever.
    struct Bound {
        Value value;
        bool isIncluded;
    };
    std::optional<Bound> lowerBound(Cell first) const;
    std::optional<Bound> upperBound(Cell last) const;

    // Returns the value in those cells that a person would pick, of those that a record can hold.
    std::optional<Value> pick(Cell first, Cell last) const;

  private:
    bool hasValue(Cell cell, Values which) const;
    bool isIn(const Value& value, Cell first, Cell last, Values which) const;
    std::vector<Value> plainValues(Cell first, Cell last) const;

    const FilterValueType kind;
    std::vector<Value> constants;
    std::vector<Cell> recordable;  // so many cells before each one hold a value that a record can have
    std::vector<Cell> all;         // likewise, any value
};

}  // namespace Brenta::OS::VIG::Tool
