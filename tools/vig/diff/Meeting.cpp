#include "tools/vig/diff/Meeting.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/document/NormalFilter.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr const DoubleFunction& kDraw = kDoubleFunctions[0];
static_assert(std::size(kDoubleFunctions) == 1, "what is drawn has the range of this function");

FilterModel filterOfDraw(const std::string& name, FilterOperator op, double constant) {
    return {{},
            op,
            FilterValueType::Double,
            {{}, {FilterOperand::Type::Envvar, name}},
            {{}, {FilterOperand::Type::Constant, fmt::format("{}", constant)}},
            nullptr};
}

using Needs = std::vector<const ActionNeed*>;

// Returns what an event has to have for the collections for which the effects ask, each once.
Needs needsOf(const Both<const std::vector<Effect>*>& effects) {
    Needs needs;
    for (const auto* const some : effects) {
        for (const Effect& each : *some) {
            for (const ActionNeed& need : each.action->needs) {
                const bool isKnown = std::ranges::any_of(
                    needs, [&](const ActionNeed* known) { return known->attribute == need.attribute; });
                if (each.ofEvent && each.action->startsCollection && !isKnown) {
                    needs.push_back(&need);
                }
            }
        }
    }
    return needs;
}

// `lacks` has the names of what the event has not, of what is needed.
Outcome outcomeOf(const std::vector<Effect>& effects, const std::set<std::string_view>& lacks) {
    Outcome outcome;
    for (const Effect& each : effects) {
        if (!each.action->startsCollection) {
            // It says which numbers the event has, and a machine's own one has none.
            outcome.lines.push_back(each.ofEvent ? each.action->name : "");
            continue;
        }
        const auto missing = std::ranges::find_if(each.action->needs, [&](const ActionNeed& need) {
            return !each.ofEvent || lacks.contains(need.attribute);
        });
        if (missing == each.action->needs.end()) {
            outcome.triggers.push_back(each.action->name);
        } else {
            outcome.lines.push_back(missing->attribute);
        }
    }
    return outcome;
}

}  // namespace

Meeting::Meeting(EventType event, const Both<const Ways*>& ways, const Surroundings& surroundings) : ways(ways) {
    std::size_t longest = 0;
    const auto see = [&]<typename T>(std::string_view name, T /*value*/) { longest = std::max(longest, name.size()); };
    surroundings.context.forEach<double>(see);
    std::size_t drawnAtMost = 0;
    actions.event = event;
    for (const Ways* const side : ways) {
        for (const Demand& demand : side->demands) {
            for (const Asked& each : demand) {
                longest = std::max(
                    {longest, each.filter->operand1.operand.value.size(), each.filter->operand2.operand.value.size()});
            }
        }
        for (const Way& way : side->ways) {
            drawnAtMost = std::max(drawnAtMost, way.numbers);
            for (const Effect& each : way.effects) {
                const std::string name(each.action->name);
                if (each.ofEvent && std::ranges::count(actions.actions, name, &ActionModel::key) == 0) {
                    ActionModel& added = actions.actions.emplace_back();
                    added.name = added.key = name;
                }
                for (const ActionNeed& need : each.action->needs) {
                    longest = std::max(longest, need.attribute.size());
                }
            }
        }
    }
    drawn.assign(longest + 1, 'd');

    Both<std::vector<std::vector<std::size_t>>> asked;
    for (std::size_t side = 0; side < ways.size(); ++side) {
        for (const Demand& demand : ways[side]->demands) {
            auto& added = asked[side].emplace_back();
            for (const Asked& each : demand) {
                added.push_back(furtherNumberOf(each));
            }
        }
    }
    std::vector<Both<std::size_t>> rangeNumbers;
    for (std::size_t number = 0; number < drawnAtMost; ++number) {
        rangeNumbers.push_back(
            {furtherNumberOf(filterOfDraw(nameOfDraw(number), FilterOperator::GreaterEqual, kDraw.least)),
             furtherNumberOf(filterOfDraw(nameOfDraw(number), FilterOperator::Less, kDraw.limit))});
    }
    std::vector<const FilterModel*> further;
    for (const FilterModel& each : models) {
        further.push_back(&each);
    }
    junction = std::make_unique<Junction>(std::vector<const TransitionModel*>{&actions}, event, further, surroundings);

    for (std::size_t side = 0; side < ways.size(); ++side) {
        for (std::size_t index = 0; index < asked[side].size(); ++index) {
            Clause clause;
            for (std::size_t each = 0; each < asked[side][index].size(); ++each) {
                const std::size_t number = asked[side][index][each];
                const bool outcome = ways[side]->demands[index][each].outcome;
                clause.push_back((outcome ? junction->furtherHolds(number) : junction->furtherFails(number)).front());
            }
            demands[side].push_back(clauseNumberOf(std::move(clause)));
        }
        for (const Way& way : ways[side]->ways) {
            addSure(way, sure[side].emplace_back(), side);
        }
        const auto& failures = ways[side]->failures;
        for (std::size_t place = 0; place < failures.size(); ++place) {
            if (failures[place]) {
                failedPlaces[side].emplace(demands[side][*failures[place]], place);
            }
        }
    }
    for (const Both<std::size_t>& each : rangeNumbers) {
        ranges.push_back(clauseNumberOf(junction->furtherHolds(each[0])));
        ranges.push_back(clauseNumberOf(junction->furtherHolds(each[1])));
    }
}

std::size_t Meeting::clauseNumberOf(Clause clause) {
    std::ranges::sort(clause);
    clause.erase(std::unique(clause.begin(), clause.end()), clause.end());
    const auto [place, isNew] = clauseNumbers.emplace(std::move(clause), clauses.size());
    if (isNew) {
        clauses.push_back(&place->first);
    }
    return place->second;
}

std::size_t Meeting::furtherNumberOf(const Asked& asked) {
    FilterModel filter = *asked.filter;
    std::size_t number = asked.drawn;
    // The library computes the left operand first.
    for (OperandModel* const operand : {&filter.operand1, &filter.operand2}) {
        const DoubleFunction* const function = doubleFunctionOf(*operand);
        if (function != nullptr && function->isRandom && filter.valueType == FilterValueType::Double) {
            operand->operand = {FilterOperand::Type::Envvar, nameOfDraw(number++)};
        } else if (!asked.ofEvent && isAttribute(*operand)) {
            operand->operand = {FilterOperand::Type::Constant, "0"};
        }
    }
    return furtherNumberOf(std::move(filter));
}

std::size_t Meeting::furtherNumberOf(FilterModel filter) {
    const auto& [left, right] = std::pair(filter.operand1.operand, filter.operand2.operand);
    const auto [place, isNew] = numbers.emplace(
        FilterKey{filter.op, filter.valueType, left.type, left.value, right.type, right.value}, models.size());
    if (isNew) {
        models.push_back(std::move(filter));
    }
    return place->second;
}

// An event that fires a transition cannot fail another one with the same filters.
bool Meeting::contradicts(std::size_t side, const Pair& pair) const {
    const std::size_t place = way(side, pair[side]).place;
    const auto& failures = ways[side]->failures;
    if (place >= failures.size() || !failures[place]) {
        return false;
    }
    const std::size_t other = 1 - side;
    const auto failed = failedPlaces[other].find(demands[side][*failures[place]]);
    return failed != failedPlaces[other].end() && failed->second < way(other, pair[other]).place;
}

// Only what draws make of a state has many ways that another demand than that of passing a transition tells apart.
void Meeting::addSure(const Way& way, std::map<std::size_t, CellSet>& cells, std::size_t side) const {
    for (const std::size_t each : way.numbers > 0 ? way.demands : std::vector<std::size_t>()) {
        const Clause& clause = *clauses[demands[side][each]];
        if (clause.size() != 1 || !clause.front().cells.isInside) {
            continue;
        }
        const CellSet& more = clause.front().cells;
        const auto [place, isNew] = cells.emplace(clause.front().variable, more);
        CellSet& known = place->second;
        known.first = std::max(known.first, more.first);
        known.last = std::min(known.last, more.last);
        known.absent = known.absent && more.absent;
        known.nan = known.nan && more.nan;
    }
}

// Tells whether no value of some attribute is among those that either way demands in any case.
bool Meeting::excludeEachOther(const Pair& pair) const {
    const auto& others = sure[1][pair[1]];
    return std::ranges::any_of(sure[0][pair[0]], [&](const auto& each) {
        const auto& [variable, mine] = each;
        const auto found = others.find(variable);
        return found != others.end() &&
               std::max(mine.first, found->second.first) >= std::min(mine.last, found->second.last) &&
               !(mine.absent && found->second.absent) && !(mine.nan && found->second.nan);
    });
}

bool Meeting::isWorthAsking(const Pair& pair) const {
    const bool isIdle = way(0, pair[0]).place == Way::kPassed && way(1, pair[1]).place == Way::kPassed;
    return !isIdle && !contradicts(0, pair) && !contradicts(1, pair) && !excludeEachOther(pair);
}

Junction::Question Meeting::toGo(const Pair& pair) const {
    std::vector<std::size_t> all;
    std::size_t drawnNumbers = 0;
    for (std::size_t side = 0; side < ways.size(); ++side) {
        for (const std::size_t each : demandsOf(way(side, pair[side]), *ways[side])) {
            all.push_back(demands[side][each]);
        }
        drawnNumbers = std::max(drawnNumbers, way(side, pair[side]).numbers);
    }
    all.insert(all.end(), ranges.begin(), ranges.begin() + static_cast<std::ptrdiff_t>(2 * drawnNumbers));
    std::vector<bool> taken(clauses.size());
    Clauses question;
    Clauses sureOnes;  // which leave no choice, narrow most, and come last
    for (const std::size_t each : all) {
        if (!taken[each]) {
            taken[each] = true;
            (clauses[each]->size() == 1 ? sureOnes : question).push_back(clauses[each]);
        }
    }
    question.insert(question.end(), sureOnes.begin(), sureOnes.end());
    return {0, std::move(question)};
}

std::vector<Meeting::Difference> Meeting::differencesOf(const Pair& pair) const {
    const Both<const std::vector<Effect>*> effects = {&way(0, pair[0]).effects, &way(1, pair[1]).effects};
    std::vector<Difference> differences;
    if (*effects[0] == *effects[1]) {
        return differences;
    }
    const Needs needs = needsOf(effects);
    for (std::size_t missing = 0; missing < std::size_t{1} << needs.size(); ++missing) {
        std::set<std::string_view> lacks;
        Clauses presence;
        for (std::size_t index = 0; index < needs.size(); ++index) {
            const ActionNeed& need = *needs[index];
            const bool isMissing = (missing >> index & 1) != 0;
            presence.push_back(isMissing ? &junction->absent(need.kind, need.attribute)
                                         : &junction->present(need.kind, need.attribute));
            if (isMissing) {
                lacks.insert(need.attribute);
            }
        }
        const Both<Outcome> outcomes = {outcomeOf(*effects[0], lacks), outcomeOf(*effects[1], lacks)};
        if (outcomes[0] != outcomes[1]) {
            Junction::Question question = toGo(pair);
            question.add({0, std::move(presence)});
            differences.push_back({std::move(question), outcomes});
        }
    }
    return differences;
}

std::optional<Meeting::Occasion> Meeting::occasionFor(const Pair& pair, const Junction::Question& question,
                                                      Effort& effort) const {
    auto whole = junction->eventFor(question, effort);
    if (!whole) {
        return std::nullopt;
    }
    Occasion occasion{{whole->type, {}, whole->timeoutId, {}}, {}, {}};
    AttributeSet& attributes = occasion.record.attributes;
    std::size_t drawnNumbers = 0;
    for (std::size_t side = 0; side < ways.size(); ++side) {
        drawnNumbers = std::max(drawnNumbers, way(side, pair[side]).numbers);
        for (const Effect& each : way(side, pair[side]).effects) {
            for (const ActionNeed& need : each.action->needs) {
                // The line that says such a number is another one than that of a machine's own event.
                const bool isLogged = each.ofEvent && need.kind == AttributeKind::Uint64;
                if (isLogged && !attributes.find<std::uint64_t>(need.attribute)) {
                    attributes.add<std::uint64_t>(need.attribute, 1);
                    attributes.sort<std::uint64_t>();
                }
            }
        }
    }
    const auto copy = [&]<typename T>(std::type_identity<T>) {
        whole->attributes.forEach<T>([&](std::string_view name, T value) {
            if (name.size() <= drawn.size()) {
                attributes.add<T>(name, value);
            }
        });
    };
    copy(std::type_identity<std::int64_t>());
    copy(std::type_identity<double>());
    copy(std::type_identity<std::string_view>());
    for (std::size_t number = 0; number < drawnNumbers; ++number) {
        occasion.numbers.push_back(whole->attributes.find<double>(nameOfDraw(number)).value_or(0));
    }
    occasion.whole = std::move(*whole);
    return occasion;
}

std::vector<Extent> Meeting::extentsAround(const Occasion& occasion, const Junction::Question& question,
                                           Effort& effort) const {
    auto extents = junction->extentsAround(occasion.whole, question, effort);
    std::erase_if(extents, [&](const Extent& each) { return each.name.size() > drawn.size(); });
    return extents;
}

}  // namespace Brenta::OS::VIG::Tool
