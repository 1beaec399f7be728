#include "tools/vig/decide/CellSolver.h"

#include <bit>

namespace Brenta::OS::VIG::Tool {

namespace {

using Cell = Scale::Cell;

constexpr std::uint64_t kEffortOfComparison = 10;  // of values, beside looking at a literal

// Returns where to begin the search for values, so that they are small ones if that will do.
Value plainValue(FilterValueType type) {
    return type == FilterValueType::Integer  ? Value(std::int64_t{1})
           : type == FilterValueType::Double ? Value(1.0)
                                             : Value(std::string("app"));
}

}  // namespace

// Leaves of the cells what the others have.
void CellSolver::Frame::narrow(const CellSet& cells) {
    if (cells.isInside) {
        first = std::max(first, cells.first);
        last = std::min(last, cells.last);
    } else if (cells.first <= first) {
        first = std::max(first, cells.last);
    } else if (last <= cells.last) {
        last = std::min(last, cells.first);
    }
    absent = absent && cells.absent;
    nan = nan && cells.nan;
}

bool CellSolver::Frame::isWithin(const CellSet& cells) const {
    const bool overlaps = std::max(first, cells.first) < std::min(last, cells.last);
    const bool isCovered = first >= last || (cells.first <= first && last <= cells.last);
    return (cells.isInside ? isCovered : !overlaps) && (!absent || cells.absent) && (!nan || cells.nan);
}

CellSolver::CellSolver(const Space& space, Values which, Attributes attributes)
    : space(space), which(which), attributes(attributes) {}

Verdict CellSolver::solve(const Clauses& question, Effort& budget) {
    effort = &budget;
    chosen.assign(space.variables.size(), {});
    values.assign(space.variables.size(), std::nullopt);
    impossible.clear();
    effort->spend(space.variables.size());
    if (!simplify(question)) {
        return effort->left == 0 ? Verdict::Undecided : Verdict::No;
    }
    Bits left((ends.size() + 63) / 64);
    for (std::size_t index = 0; index < ends.size(); ++index) {
        left[index / 64] |= std::uint64_t{1} << index % 64;
    }
    const bool isPossible = search(left, false);
    return isPossible ? Verdict::Yes : budget.left == 0 ? Verdict::Undecided : Verdict::No;
}

CellSolver::Frame CellSolver::frameOf(const Variable& variable) const {
    const bool canBePresent = variable.canBePresent && (variable.isNamedInUtf8 || which == Values::All);
    return {0, canBePresent ? variable.scale.cellCount() : 0,
            variable.canBeAbsent && !(attributes == Attributes::Promised && variable.isPromised && canBePresent),
            which == Values::All && canBePresent && variable.type == FilterValueType::Double};
}

// Narrows the frames by the clauses that have no choice, until that leaves no other clause without one: most
// transitions of a state exclude each other, so that little is left. Returns false if a clause cannot be fulfilled.
bool CellSolver::simplify(const Clauses& question) {
    frames.clear();
    for (const Variable& each : space.variables) {
        frames.push_back(frameOf(each));
    }
    const auto isPossible = [&](const Literal& each) {
        return !frames[each.variable].isWithin(each.cells.complement());
    };
    const auto isFulfilled = [&](const Literal& each) { return frames[each.variable].isWithin(each.cells); };
    // What a transition asks of an event comes last in a question, and narrows most.
    Clauses open(question.rbegin(), question.rend());
    bool isDead = false;
    bool hasChanged = true;
    const auto isDone = [&](const Clause* clause) {
        const auto choice = std::ranges::find_if(*clause, isPossible);
        isDead = isDead || choice == clause->end() || !effort->spend(clause->size());
        if (isDead) {
            return false;
        }
        if (std::find_if(choice + 1, clause->end(), isPossible) != clause->end()) {
            // A frame that nothing is asked of has all cells, and a literal for all of them is for the absence, too.
            return std::ranges::any_of(*clause, isFulfilled);
        }
        Frame& frame = frames[choice->variable];
        frame.isAsked = true;
        if (!frame.isWithin(choice->cells)) {
            const Frame before = frame;
            frame.narrow(choice->cells);
            hasChanged = hasChanged || frame != before;
            isDead = !frame.absent && !frame.nan &&
                     !space.variables[choice->variable].scale.haveValue(frame.first, frame.last, which);
        }
        // Values for what is compared with others are looked for only where a clause asks for them.
        return !space.variables[choice->variable].isCompared && frame.isWithin(choice->cells);
    };
    while (!isDead && std::exchange(hasChanged, false)) {
        std::erase_if(open, isDone);
    }
    literals.clear();
    ends.clear();
    for (const Clause* const clause : isDead ? Clauses() : open) {
        std::ranges::copy_if(*clause, std::back_inserter(literals), isPossible);
        ends.push_back(literals.size());
    }
    return !isDead;
}

std::span<const Literal> CellSolver::clause(std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : ends[index - 1];
    return std::span(literals).subspan(begin, ends[index] - begin);
}

void CellSolver::forEachLeft(const Bits& left, const auto& visit) const {
    for (std::size_t word = 0; word < left.size(); ++word) {
        for (std::uint64_t rest = left[word]; rest != 0; rest &= rest - 1) {
            visit(64 * word + static_cast<std::size_t>(std::countr_zero(rest)));
        }
    }
}

CellSolver::Next CellSolver::nextVariable(const Bits& left) const {
    Next next;
    std::vector<std::size_t> weights(space.variables.size());
    std::size_t looks = weights.size();
    forEachLeft(left, [&](std::size_t index) {
        looks += clause(index).size();
        const auto isOpen = [&](const Literal& each) { return chosen[each.variable].kind == Kind::Open; };
        const auto open = std::ranges::count_if(clause(index), isOpen);
        next.isDead = next.isDead || open == 0;
        for (const Literal& each : clause(index)) {
            // More than all clauses together weighs a clause without a choice, and even more what is compared.
            const std::size_t weight = 1 + (open == 1 ? ends.size() : 0);
            weights[each.variable] += isOpen(each) ? weight : 0;
        }
    });
    effort->spend(looks);
    std::size_t most = 0;
    for (std::size_t variable = 0; variable < weights.size(); ++variable) {
        const std::size_t beyondAll = ends.size() * (ends.size() + 1);
        const std::size_t weight =
            weights[variable] + (space.variables[variable].isCompared && weights[variable] > 0 ? beyondAll : 0);
        if (weight > most) {
            most = weight;
            next.variable = variable;
        }
    }
    return next;
}

bool CellSolver::search(const Bits& left, bool areValuesFound) {
    const Next next = nextVariable(left);
    if (next.isDead || !effort->spend(1)) {
        return false;
    }
    if (!areValuesFound && !(next.variable && space.variables[*next.variable].isCompared)) {
        return findValues() && search(left, true);
    }
    if (!next.variable) {
        return true;
    }
    std::vector<bool> assigned;
    if (areValuesFound) {
        std::ranges::transform(chosen, std::back_inserter(assigned),
                               [](const Region& each) { return each.kind != Kind::Open; });
        if (impossible.contains({assigned, left})) {
            return false;
        }
    }
    std::vector<Bits> failed;
    for (Branch& branch : branchesOf(*next.variable, left)) {
        const auto leavesMore = [&](const Bits& than) {
            return std::ranges::equal(than, branch.left, [](auto less, auto more) { return (less & ~more) == 0; });
        };
        if (areValuesFound && std::ranges::any_of(failed, leavesMore)) {
            continue;
        }
        chosen[*next.variable] = branch.region;
        if ((areValuesFound || findValues()) && search(branch.left, areValuesFound)) {
            return true;
        }
        failed.push_back(std::move(branch.left));
    }
    chosen[*next.variable] = {};
    if (areValuesFound && effort->left > 0) {
        impossible.emplace(std::move(assigned), left);
    }
    return false;
}

// Those that fulfil most come first; among these, values before their absence.
std::vector<CellSolver::Branch> CellSolver::branchesOf(std::size_t variable, const Bits& left) {
    std::vector<std::pair<std::size_t, const CellSet*>> asking;
    std::vector<Cell> bounds = {0, space.variables[variable].scale.cellCount()};
    forEachLeft(left, [&](std::size_t index) {
        for (const Literal& each : clause(index)) {
            if (each.variable == variable) {
                asking.emplace_back(index, &each.cells);
                bounds.push_back(each.cells.first);
                bounds.push_back(each.cells.last);
            }
        }
    });
    std::vector<Branch> branches;
    for (const Region& region : regionsOf(variable, std::move(bounds))) {
        if (!effort->spend(asking.size())) {
            return {};
        }
        Branch branch{region, left};
        for (const auto& [index, cells] : asking) {
            const bool holds = region.kind == Kind::Present  ? cells->has(region.first)
                               : region.kind == Kind::Absent ? cells->absent
                                                             : cells->nan;
            branch.left[index / 64] &= ~(std::uint64_t{holds} << index % 64);
        }
        branches.push_back(std::move(branch));
    }
    std::ranges::stable_sort(branches, {}, [](const Branch& each) {
        int count = 0;
        for (const std::uint64_t word : each.left) {
            count += std::popcount(word);
        }
        return count;
    });
    return branches;
}

std::vector<CellSolver::Region> CellSolver::regionsOf(std::size_t variable, std::vector<Cell> bounds) const {
    const Frame& frame = frames[variable];
    for (Cell& each : bounds) {
        each = std::clamp(each, frame.first, std::max(frame.first, frame.last));
    }
    std::ranges::sort(bounds);
    std::vector<Region> regions;
    for (std::size_t index = 0; index + 1 < bounds.size(); ++index) {
        if (space.variables[variable].scale.haveValue(bounds[index], bounds[index + 1], which)) {
            regions.push_back({Kind::Present, bounds[index], bounds[index + 1]});
        }
    }
    if (frame.absent) {
        regions.push_back({Kind::Absent});
    }
    if (frame.nan) {
        regions.push_back({Kind::Nan});
    }
    return regions;
}

bool CellSolver::findValues() {
    std::vector<Region> regions = chosen;
    return findValues(regions, 0);
}

// Tries every way in which the attributes of the relations that matter can be present, absent or NaN, as far as that is
// open.
bool CellSolver::findValues(std::vector<Region>& regions, std::size_t next) {
    if (!effort->spend(space.relations.size())) {
        return false;
    }
    for (; next < 2 * space.relations.size(); ++next) {
        const Relation& relation = space.relations[next / 2];
        const std::size_t variable = next % 2 == 0 ? relation.left : relation.right;
        if (regions[relation.variable].kind == Kind::Open || regions[variable].kind != Kind::Open) {
            continue;
        }
        const Cell last = space.variables[variable].scale.cellCount();
        for (const Region& each : regionsOf(variable, {0, last})) {
            regions[variable] = each;
            if (findValues(regions, next + 1)) {
                return true;
            }
        }
        regions[variable] = {};
        return false;
    }
    for (const Relation& relation : space.relations) {
        const bool hasNan = regions[relation.left].kind == Kind::Nan || regions[relation.right].kind == Kind::Nan;
        if (regions[relation.variable].kind != Kind::Open && hasNan != (regions[relation.variable].kind == Kind::Nan)) {
            return false;
        }
    }
    found = regions;
    return order(regions, true) || order(regions, false);
}

// Gives each attribute the least value that its cells and its relations to others permit, which leaves the others most.
bool CellSolver::order(const std::vector<Region>& regions, bool fromPlainValues) {
    values.assign(values.size(), std::nullopt);
    std::vector<const Relation*> relations;
    for (const Relation& relation : space.relations) {
        if (regions[relation.variable].kind != Kind::Present) {
            continue;
        }
        relations.push_back(&relation);
        for (const std::size_t variable : {relation.left, relation.right}) {
            const FilterValueType type = space.variables[variable].type;
            const Scale& scale = space.variables[variable].scale;
            const Region& region = regions[variable];
            const bool isPlain = fromPlainValues && region.first == 0;
            values[variable] = region.kind == Kind::Absent
                                   ? std::optional(absentValue(type))
                                   : scale.leastFrom(isPlain ? plainValue(type) : leastValue(type, which), region.first,
                                                     region.last, which);
            if (!values[variable]) {
                return false;
            }
        }
    }
    // Each round brings what the relations ask for one step further; where it does not end, they go round in a circle.
    bool hasChanged = true;
    for (std::size_t round = 0; hasChanged; ++round) {
        hasChanged = false;
        for (const Relation* const each : relations) {
            const auto& [kind, first, last] = regions[each->variable];
            const auto boundBy = [&, isStrict = first == 2 || last == 1](const Value& value) {
                const auto* const text = fromPlainValues ? std::get_if<std::string>(&value) : nullptr;
                return !isStrict         ? std::optional(value)
                       : text != nullptr ? std::optional<Value>(*text + "a")
                                         : valueAbove(value, which);
            };
            const bool isPossible =
                (last == 3 || raise(each->right, boundBy(*values[each->left]), regions[each->right], hasChanged)) &&
                (first == 0 || raise(each->left, boundBy(*values[each->right]), regions[each->left], hasChanged));
            if (!isPossible || !effort->spend(kEffortOfComparison) || round > 2 * space.relations.size()) {
                return false;
            }
        }
    }
    return true;
}

bool CellSolver::raise(std::size_t variable, const std::optional<Value>& bound, const Region& region,
                       bool& hasChanged) {
    if (!bound || *values[variable] >= *bound) {
        return bound.has_value();
    }
    hasChanged = true;
    values[variable] = region.kind == Kind::Absent
                           ? std::nullopt
                           : space.variables[variable].scale.leastFrom(*bound, region.first, region.last, which);
    return values[variable].has_value();
}

std::optional<Value> CellSolver::valueOf(std::size_t variable) const {
    const Frame& frame = frames[variable];
    const Scale& scale = space.variables[variable].scale;
    Region region = chosen[variable].kind == Kind::Open ? found[variable] : chosen[variable];
    if (region.kind == Kind::Open && frame.isAsked && scale.haveValue(frame.first, frame.last, which)) {
        region = {Kind::Present, frame.first, frame.last};
    }
    if (region.kind != Kind::Present) {
        return std::nullopt;
    }
    return values[variable] ? values[variable] : scale.pick(region.first, region.last);
}

}  // namespace Brenta::OS::VIG::Tool
