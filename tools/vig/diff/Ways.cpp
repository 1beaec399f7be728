#include "tools/vig/diff/Ways.h"

#include <algorithm>

#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/State.h"
#include "tools/vig/document/NormalFilter.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;
using RulesEngine::FiniteStateMachine;
using RulesEngine::State;

namespace {

constexpr std::size_t kMostMoves = FiniteStateMachine::MAX_ENTERING_STATE_MOVES;
// Only draws make many ways of one event.
constexpr std::size_t kMostWaysByDraws = 200;
constexpr std::uint64_t kMostOfPossibility = 10'000;
constexpr std::size_t kMostMovesInAll = 100'000;
// Each transition demands that all before it fail, which are too many in a state of thousands.
constexpr std::size_t kMostDemands = 20'000'000;

}  // namespace

// Knows whether an event can go the beginning of a way, but for what is drawn: most transitions of a state exclude each
// other, so that few of the ways that draws could make are any.
class WayFinder::Possibilities {
  public:
    Possibilities(EventType event, const std::vector<const FilterModel*>& filters, const Surroundings& surroundings)
        : junction({}, event, filters, surroundings) {
        for (const FilterModel* const each : filters) {
            numbers.emplace(each, numbers.size());
        }
    }

    bool has(const Way& way, const Ways& ways) const {
        std::vector<Clause> clauses;
        for (const std::size_t index : demandsOf(way, ways)) {
            const Demand& demand = ways.demands[index];
            if (std::ranges::any_of(demand, [](const Asked& each) { return numbersDrawnBy(*each.filter) > 0; })) {
                continue;
            }
            Clause& clause = clauses.emplace_back();
            for (const Asked& each : demand) {
                const std::size_t number = numbers.at(each.filter);
                clause.push_back(
                    (each.outcome ? junction.furtherHolds(number) : junction.furtherFails(number)).front());
            }
        }
        Junction::Question question;
        std::ranges::transform(clauses, std::back_inserter(question.clauses), [](const Clause& each) { return &each; });
        Effort little{kMostOfPossibility};
        return junction.decide(question, Values::All, little) != Verdict::No;
    }

  private:
    const Junction junction;
    std::map<const FilterModel*, std::size_t> numbers;
};

std::size_t numbersDrawnBy(const FilterModel& filter) {
    const auto count = [&](const OperandModel& operand) -> std::size_t {
        const DoubleFunction* const function = doubleFunctionOf(operand);
        return function != nullptr && function->isRandom && filter.valueType == FilterValueType::Double ? 1 : 0;
    };
    return count(filter.operand1) + count(filter.operand2);
}

std::vector<std::size_t> demandsOf(const Way& way, const Ways& ways) {
    std::vector<std::size_t> all(ways.passing.begin(), ways.passing.begin() + static_cast<std::ptrdiff_t>(way.passed));
    all.insert(all.end(), way.demands.begin(), way.demands.end());
    return all;
}

WayFinder::WayFinder(const ConfigModel& config, const Surroundings& surroundings)
    : model(config), surroundings(surroundings) {
    std::map<std::string_view, std::size_t> numbers;
    const auto numberOf = [&](std::string_view name) {
        const auto [place, isNew] = numbers.emplace(name, names.size());
        if (isNew) {
            names.push_back(name);
        }
        return place->second;
    };
    numberOf(State::START_STATE);
    for (std::size_t index = 0; index < config.transitions.size(); ++index) {
        const TransitionModel& each = config.transitions[index];
        listeners[{numberOf(each.from), each.event}].push_back(index);
        targets.push_back(numberOf(each.to));
    }
    through.resize(targets.size());
}

std::set<EventType> WayFinder::heardIn(std::size_t state) const {
    std::set<EventType> types;
    for (auto each = listeners.lower_bound({state, EventType{}}); each != listeners.end() && each->first.first == state;
         ++each) {
        if (each->first.second != EventType::EnteringState) {
            types.insert(each->first.second);
        }
    }
    return types;
}

const std::vector<std::size_t>& WayFinder::listening(std::size_t state, EventType event) const {
    static const std::vector<std::size_t> nobody;
    const auto found = listeners.find({state, event});
    return found == listeners.end() ? nobody : found->second;
}

// Returns the outcome of a filter that asks nothing of the event from outside.
std::optional<bool> WayFinder::constantOutcome(const FilterModel& filter, bool ofEvent) {
    if (ofEvent || numbersDrawnBy(filter) > 0) {
        return std::nullopt;
    }
    const auto [place, isNew] = outcomes.try_emplace(&filter);
    if (isNew) {
        const FilterModel* const asked = &filter;
        const Junction junction({}, EventType::EnteringState, std::span(&asked, 1), surroundings);
        Effort enough;
        place->second = junction.decide({0, {&junction.furtherHolds(0)}}, Values::All, enough) == Verdict::Yes;
    }
    return place->second;
}

// Adds a demand to the way, unless it is met anyway. Returns false if it cannot be met.
bool WayFinder::add(const Demand& demand, Way& way, Ways& ways) {
    Demand open;
    for (const Asked& each : demand) {
        const auto outcome = constantOutcome(*each.filter, each.ofEvent);
        if (outcome == each.outcome) {
            return true;
        }
        if (!outcome) {
            open.push_back(each);
        }
    }
    if (open.empty()) {
        return false;
    }
    way.demands.push_back(ways.demands.size());
    ways.demands.push_back(std::move(open));
    return true;
}

void WayFinder::addEffects(std::size_t transition, bool ofEvent, std::vector<Effect>& effects) const {
    for (const ActionModel& each : model.transitions[transition].actions) {
        const KnownAction* const known = findAction(each.key);
        if (known != nullptr && !known->needs.empty()) {
            effects.push_back({known, ofEvent});
        }
    }
}

// Asks the transitions one after the other. A filter that is false keeps those behind it from drawing, so that a
// transition can be passed in as many ways as it can have drawn different counts of numbers.
void WayFinder::ask(Begun first, const std::vector<std::size_t>& transitions, const Possibilities* possibilities,
                    Ways& ways, std::vector<Begun>& fired, std::vector<Begun>& passed) {
    const auto isImpossible = [&](const Begun& each) {
        return possibilities != nullptr && !possibilities->has(each.way, ways);
    };
    const bool ofEvent = !first.hasMoved;
    std::vector<Begun> open = {std::move(first)};
    std::size_t demanded = 0;
    for (std::size_t place = 0; place < transitions.size(); ++place) {
        std::vector<Begun> left;
        for (Begun& before : open) {
            Begun holding = before;
            Demand failing;
            const auto pass = [&](Begun begun) {
                begun.way.numbers = holding.way.numbers;
                if (add(std::exchange(failing, {}), begun.way, ways)) {
                    left.push_back(std::move(begun));
                }
            };
            bool isPossible = true;
            for (const FilterModel& filter : model.transitions[transitions[place]].filters) {
                const std::size_t numbers = numbersDrawnBy(filter);
                if (numbers > 0 && !failing.empty()) {
                    pass(std::exchange(before, holding));
                }
                failing.push_back({&filter, ofEvent, holding.way.numbers, false});
                isPossible = add({{&filter, ofEvent, holding.way.numbers, true}}, holding.way, ways);
                holding.way.numbers += numbers;
                if (!isPossible) {
                    break;
                }
            }
            const bool hasDrawn = holding.way.numbers != before.way.numbers;
            pass(std::move(before));
            if (ofEvent && !hasDrawn && !left.empty()) {
                ways.failures[place] = left.back().way.demands.back();
            }
            if (isPossible) {
                holding.way.place = ofEvent ? place : holding.way.place;
                holding.state = targets[transitions[place]];
                addEffects(transitions[place], ofEvent, holding.way.effects);
                demanded += holding.way.demands.size();
                fired.push_back(std::move(holding));
            }
        }
        // As long as there is one way on, those that fire share what they have passed.
        if (ofEvent && left.size() == 1 && left.front().way.numbers == 0 && left.front().way.demands.size() == 1) {
            Way& only = left.front().way;
            ways.passing.push_back(only.demands.front());
            only.demands.clear();
            only.passed = ways.passing.size();
        }
        open = std::move(left);
        std::erase_if(open, isImpossible);
        if (open.size() > kMostWaysByDraws || demanded > kMostDemands) {
            ways.isWhole = false;
            return;
        }
    }
    std::erase_if(fired, isImpossible);
    std::ranges::move(open, std::back_inserter(passed));
}

// Follows the machine's own events until it waits.
void WayFinder::follow(Begun first, Ways& ways) {
    const std::size_t mostWays = ways.ways.size() + kMostWaysByDraws;
    std::vector<Begun> open = {std::move(first)};
    while (!open.empty()) {
        Begun begun = std::move(open.back());
        open.pop_back();
        std::vector<Begun> waiting;
        if (begun.moves == kMostMoves) {
            waiting.push_back(std::move(begun));
        } else {
            const std::size_t before = open.size();
            const auto& transitions = listening(begun.state, EventType::EnteringState);
            ask(std::move(begun), transitions, nullptr, ways, open, waiting);
            std::for_each(open.begin() + static_cast<std::ptrdiff_t>(before), open.end(),
                          [](Begun& each) { ++each.moves; });
        }
        for (Begun& each : waiting) {
            each.way.rest = each.state;
            ways.ways.push_back(std::move(each.way));
        }
        ways.isWhole = ways.isWhole && ways.ways.size() + open.size() <= mostWays && ++ways.moves <= kMostMovesInAll;
        if (!ways.isWhole) {
            return;
        }
    }
}

const std::optional<Way>& WayFinder::wayThrough(std::size_t transition) {
    std::optional<std::optional<Way>>& whole = through[transition];
    if (whole) {
        return *whole;
    }
    Begun begun{{}, targets[transition], true};
    addEffects(transition, true, begun.way.effects);
    if (listening(begun.state, EventType::EnteringState).empty()) {
        begun.way.rest = begun.state;
        return whole.emplace(std::move(begun.way));
    }
    Ways ways;
    follow(std::move(begun), ways);
    const bool isOne = ways.isWhole && ways.ways.size() == 1 && ways.ways.front().numbers == 0;
    return whole.emplace(isOne ? std::optional(std::move(ways.ways.front())) : std::nullopt);
}

const Ways& WayFinder::waysFrom(std::size_t state, EventType event) {
    const auto [place, isNew] = known.try_emplace({state, event});
    Ways& ways = place->second;
    if (!isNew) {
        return ways;
    }
    const auto& transitions = listening(state, event);
    std::vector<Begun> fired;
    std::vector<Begun> passed;
    ways.failures.resize(transitions.size());
    std::vector<const FilterModel*> filters;  // that draw nothing
    bool isDrawn = false;
    for (const std::size_t each : transitions) {
        for (const FilterModel& filter : model.transitions[each].filters) {
            isDrawn = isDrawn || numbersDrawnBy(filter) > 0;
            if (numbersDrawnBy(filter) == 0) {
                filters.push_back(&filter);
            }
        }
    }
    std::optional<Possibilities> possibilities;
    if (isDrawn) {
        possibilities.emplace(event, filters, surroundings);
    }
    ask({{.place = Way::kPassed}, state}, transitions, possibilities ? &*possibilities : nullptr, ways, fired, passed);
    for (Begun& each : fired) {
        if (const auto& whole = wayThrough(transitions[each.way.place])) {
            each.way.effects = whole->effects;
            each.way.rest = whole->rest;
            ways.ways.push_back(std::move(each.way));
        } else {
            each.hasMoved = true;
            follow(std::move(each), ways);
        }
    }
    for (Begun& each : passed) {
        each.way.rest = state;
        ways.ways.push_back(std::move(each.way));
    }
    return ways;
}

Ways WayFinder::waysFromStart() {
    Ways ways;
    follow({{}, kStart, true}, ways);
    return ways;
}

}  // namespace Brenta::OS::VIG::Tool
