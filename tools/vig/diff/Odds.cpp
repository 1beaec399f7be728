// States are taken to be alike until they are told apart: by an event that makes one of them more probably have an
// effect, or lead among states that are alike, than the other one. What is left alike when nothing more is told apart
// has the same odds for ever.

#include "tools/vig/diff/Odds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "tools/vig/document/NormalFilter.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr double kLeastDifference = 1e-15;  // what is added up of doubles can be off by less
constexpr std::uint64_t kEffortOfAssumedWay = 50;

// Returns how probable it is that a filter that draws one number is true; nothing if that depends on an attribute.
std::optional<double> oddsOf(const FilterModel& filter) {
    const NormalFilter normal = normalFormOf(filter);
    if (numbersDrawnBy(filter) != 1 || !isFunction(normal.left) || !isConstant(normal.right)) {
        return std::nullopt;
    }
    const double limit = std::get<double>(constantOf(normal.right.operand.value, FilterValueType::Double));
    if (std::isnan(limit)) {
        return normal.op == FilterOperator::NotEqual ? 1 : 0;
    }
    const double below = std::clamp(limit, 0.0, 1.0);
    return (compares(normal.op, 0.0, 1.0) ? below : 0) + (compares(normal.op, 1.0, 0.0) ? 1 - below : 0);
}

class Odds {
  public:
    Odds(const Both<WayFinder*>& machines, const Surroundings& surroundings, Differ::States states)
        : machines(machines), surroundings(surroundings), states(states) {}

    bool areSame() {
        const Both<Ways> start = {machines[0]->waysFromStart(), machines[1]->waysFromStart()};
        Both<std::vector<std::size_t>> found;  // states
        for (std::size_t side = 0; side < machines.size(); ++side) {
            for (const Way& each : start[side].ways) {
                find({side, each.rest}, found[side]);
            }
            for (std::size_t index = 0; index < found[side].size(); ++index) {
                for (const EventType type : machines[side]->heardIn(found[side][index])) {
                    for (const Way& each : machines[side]->waysFrom(found[side][index], type).ways) {
                        find({side, each.rest}, found[side]);
                    }
                }
            }
        }
        while (isKnown && tellApart()) {
        }
        return isKnown && areAlike(start[0], start[1], EventType::Test, {0, 1}) && isKnown;
    }

  private:
    using Place = std::pair<std::size_t, std::size_t>;  // a machine and a state of it
    using Chances = std::map<std::pair<std::vector<std::pair<const KnownAction*, bool>>, std::size_t>, double>;

    void find(const Place& place, std::vector<std::size_t>& found) {
        std::size_t number = 0;
        if (states == Differ::States::Compared) {
            const std::string_view name = machines[place.first]->stateName(place.second);
            number = names.emplace(name, names.size()).first->second;
        }
        if (classes.emplace(place, number).second) {
            found.push_back(place.second);
        }
    }

    // Returns true if some states are not alike any more.
    bool tellApart() {
        std::map<std::size_t, std::vector<Place>> members;
        for (const auto& [place, number] : classes) {
            members[number].push_back(place);
        }
        std::map<Place, std::size_t> next;
        std::size_t count = 0;
        for (const auto& [number, places] : members) {
            std::vector<Place> first;  // of each new class
            for (const Place& each : places) {
                const auto alike =
                    std::ranges::find_if(first, [&](const Place& other) { return areAlike(each, other); });
                next[each] = count + static_cast<std::size_t>(alike - first.begin());
                if (alike == first.end()) {
                    first.push_back(each);
                }
                if (!isKnown) {
                    return false;
                }
            }
            count += first.size();
        }
        const bool hasChanged = count != members.size();
        classes = std::move(next);
        return hasChanged;
    }

    bool areAlike(const Place& left, const Place& right) {
        std::set<EventType> types;
        for (const Place& each : {left, right}) {
            types.merge(machines[each.first]->heardIn(each.second));
        }
        return std::ranges::all_of(types, [&](EventType type) {
            return areAlike(machines[left.first]->waysFrom(left.second, type),
                            machines[right.first]->waysFrom(right.second, type), type, {left.first, right.first});
        });
    }

    // Compares what comes of the ways of either machine, whatever event comes.
    bool areAlike(const Ways& left, const Ways& right, EventType type, const Both<std::size_t>& machinesOf) {
        Comparison comparison{{&left, &right}, machinesOf};
        for (const Ways* const ways : comparison.ways) {
            isKnown = isKnown && ways->isWhole;
            for (const Demand& demand : ways->demands) {
                for (const Asked& each : demand) {
                    if (numbersDrawnBy(*each.filter) == 0) {
                        comparison.numbers.emplace(each.filter, comparison.filters.size());
                        comparison.filters.push_back(each.filter);
                    }
                }
            }
        }
        const Junction junction({}, type, comparison.filters, surroundings);
        comparison.junction = &junction;
        return haveSameChances(comparison, {});
    }

    struct Comparison {
        Both<const Ways*> ways;
        Both<std::size_t> machines;
        std::vector<const FilterModel*> filters = {};  // that draw nothing
        std::map<const FilterModel*, std::size_t> numbers = {};
        const Junction* junction = nullptr;
    };
    using Assumed = std::map<std::size_t, bool>;  // outcomes of filters

    // Assumes as many outcomes of filters as decide what comes of the event, in each way in which that is possible.
    bool haveSameChances(const Comparison& comparison, const Assumed& assumed) {
        Both<Chances> chances;
        for (std::size_t side = 0; side < machines.size(); ++side) {
            const auto open = chancesOf(comparison, side, assumed, chances[side]);
            if (!isKnown ||
                !surroundings.effort.spend(kEffortOfAssumedWay * (1 + comparison.ways[side]->ways.size()))) {
                isKnown = false;
                return false;
            }
            if (open) {
                return std::ranges::all_of(std::array{true, false}, [&](bool outcome) {
                    Assumed more = assumed;
                    more[*open] = outcome;
                    return !isPossible(comparison, more) || haveSameChances(comparison, more);
                });
            }
        }
        for (const auto& [what, chance] : chances[1]) {
            chances[0][what] -= chance;
        }
        return std::ranges::all_of(chances[0],
                                   [](const auto& each) { return std::abs(each.second) < kLeastDifference; });
    }

    bool isPossible(const Comparison& comparison, const Assumed& assumed) {
        Junction::Question question;
        for (const auto& [number, outcome] : assumed) {
            question.clauses.push_back(outcome ? &comparison.junction->furtherHolds(number)
                                               : &comparison.junction->furtherFails(number));
        }
        return comparison.junction->decide(question, Values::All, surroundings.effort) != Verdict::No;
    }

    // Adds up how probable it is what comes of the ways, or returns a filter on which that depends.
    std::optional<std::size_t> chancesOf(const Comparison& comparison, std::size_t side, const Assumed& assumed,
                                         Chances& chances) {
        for (const Way& way : comparison.ways[side]->ways) {
            double chance = 1;
            std::optional<std::size_t> open;
            const auto demands = demandsOf(way, *comparison.ways[side]);
            for (std::size_t index = 0; index < demands.size() && chance > 0; ++index) {
                double met = 0;
                std::optional<std::size_t> openHere;
                for (const Asked& each : comparison.ways[side]->demands[demands[index]]) {
                    if (numbersDrawnBy(*each.filter) > 0) {
                        const auto odds = oddsOf(*each.filter);
                        isKnown = isKnown && odds;
                        met = std::max(met, each.outcome ? odds.value_or(0) : 1 - odds.value_or(0));
                        continue;
                    }
                    const std::size_t number = comparison.numbers.at(each.filter);
                    const auto outcome = assumed.find(number);
                    if (outcome == assumed.end()) {
                        openHere = number;
                    } else if (outcome->second == each.outcome) {
                        met = 1;
                    }
                }
                open = met < 1 && openHere ? openHere : open;
                chance *= met < 1 && openHere ? 1 : met;
            }
            if (chance > 0 && open) {
                return open;
            }
            std::vector<std::pair<const KnownAction*, bool>> effects;
            for (const Effect& each : way.effects) {
                effects.emplace_back(each.action, each.ofEvent);
            }
            chances[{std::move(effects), classes.at({comparison.machines[side], way.rest})}] += chance;
        }
        return std::nullopt;
    }

    const Both<WayFinder*> machines;
    const Surroundings& surroundings;
    const Differ::States states;
    std::map<std::string_view, std::size_t> names;
    std::map<Place, std::size_t> classes;
    bool isKnown = true;  // otherwise nothing is claimed
};

}  // namespace

bool haveSameOdds(const Both<WayFinder*>& machines, const Surroundings& surroundings, Differ::States states) {
    return Odds(machines, surroundings, states).areSame();
}

}  // namespace Brenta::OS::VIG::Tool
