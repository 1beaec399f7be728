#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/decide/Scale.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// It has cells of one scale, as a filter tells them apart: a run of cells or all but that, and whether the attribute
// may be absent or NaN.
struct CellSet {
    Scale::Cell first = 0;
    Scale::Cell last = 0;  // the one behind
    bool isInside = true;
    bool absent = false;
    bool nan = false;

    CellSet complement() const { return {first, last, !isInside, !absent, !nan}; }
    bool has(Scale::Cell cell) const { return (first <= cell && cell < last) == isInside; }

    auto operator<=>(const CellSet&) const = default;  // NOLINT(modernize-use-nullptr): it takes the operator for a 0
};

// One of the literals of a clause has to hold, and each clause of a question.
struct Literal {
    std::size_t variable;
    CellSet cells;

    auto operator<=>(const Literal&) const = default;  // NOLINT(modernize-use-nullptr): likewise
};
using Clause = std::vector<Literal>;
using Clauses = std::vector<const Clause*>;

// It is an attribute of an event, or how two of them lie to each other: the cells are then less, equal and greater, and
// NaN is that they cannot be compared.
struct Variable {
    FilterValueType type;
    std::string_view name;
    Scale scale;
    bool canBePresent = true;
    bool isNamedInUtf8 = true;  // otherwise no record can hold it
    bool canBeAbsent = true;
    bool isPromised = false;    // events of the type are known to have it
    bool isCompared = false;    // with another attribute
    bool isAskedAlone = false;  // a filter or an action asks the event alone for it, and not the context
};

struct Relation {
    std::size_t variable;
    std::size_t left;
    std::size_t right;
};

struct Space {
    std::vector<Variable> variables;
    std::vector<Relation> relations;
};

enum class Verdict { Yes, No, Undecided };

// It bounds how much is looked at, so that no document takes long. What is asked when it is used up is undecided; an
// interruption, if there may be one, uses it up.
struct Effort {
    std::uint64_t left = 100'000'000;  // literals, or what takes as long; a second or two
    const Interruption* interruption = nullptr;

    bool spend(std::uint64_t amount) {
        const bool isOver = interruption != nullptr && interruption->requested();
        left = isOver ? 0 : left - std::min(left, amount);
        return left > 0;
    }
};

// Decides, exactly, whether an event can fulfil all clauses of a question. It is split on one variable after the other,
// that of a clause with no other choice or else the one in most clauses, into the runs of cells that the clauses tell
// apart. What is left depends only on which clauses are not fulfilled yet: what was found impossible once is not tried
// again. Attributes that are compared with each other come first, and then values for them are looked for.
class CellSolver {
  public:
    enum class Attributes { Any, Promised };

    // With Attributes::Promised, those that events of the type are known to have are not absent.
    CellSolver(const Space& space, Values which, Attributes attributes);

    Verdict solve(const Clauses& question, Effort& budget);

    // After the verdict Yes: returns the value that fulfils it, nothing for an attribute that is absent or that nothing
    // is asked of. REQUIRES: recordable values were asked for.
    std::optional<Value> valueOf(std::size_t variable) const;

  private:
    enum class Kind { Open, Present, Absent, Nan };

    // Cells that no clause tells apart.
    struct Region {
        Kind kind = Kind::Open;
        Scale::Cell first = 0;
        Scale::Cell last = 0;
    };

    // It is what clauses without a choice leave of a variable, or more.
    struct Frame {
        Scale::Cell first;
        Scale::Cell last;
        bool absent;
        bool nan;
        bool isAsked = false;  // a clause counts on it

        void narrow(const CellSet& cells);
        bool isWithin(const CellSet& cells) const;
        bool operator==(const Frame&) const = default;
    };

    using Bits = std::vector<std::uint64_t>;  // of the clauses, those that are not fulfilled

    struct Branch {
        Region region;
        Bits left;
    };

    struct Next {
        bool isDead = false;  // a clause can no more be fulfilled
        std::optional<std::size_t> variable = {};
    };

    Frame frameOf(const Variable& variable) const;
    bool simplify(const Clauses& question);
    std::span<const Literal> clause(std::size_t index) const;
    bool search(const Bits& left, bool areValuesFound);
    Next nextVariable(const Bits& left) const;
    std::vector<Branch> branchesOf(std::size_t variable, const Bits& left);
    std::vector<Region> regionsOf(std::size_t variable, std::vector<Scale::Cell> bounds) const;
    void forEachLeft(const Bits& left, const auto& visit) const;

    bool findValues();
    bool findValues(std::vector<Region>& regions, std::size_t next);
    bool order(const std::vector<Region>& regions, bool fromPlainValues);
    bool raise(std::size_t variable, const std::optional<Value>& bound, const Region& region, bool& hasChanged);

    const Space& space;
    const Values which;
    const Attributes attributes;
    std::vector<Frame> frames;                 // of each variable
    std::vector<Literal> literals;             // of the clauses, one clause after the other
    std::vector<std::size_t> ends;             // of each clause, in `literals`
    std::vector<Region> chosen;                // of each variable
    std::vector<Region> found;                 // with the values, of those that are compared with each other
    std::vector<std::optional<Value>> values;  // of those that are compared with each other
    std::set<std::pair<std::vector<bool>, Bits>> impossible;
    Effort* effort = nullptr;
};

}  // namespace Brenta::OS::VIG::Tool
