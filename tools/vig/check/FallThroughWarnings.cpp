#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr std::size_t kMostTried = 64;  // later transitions, for one filter

// Returns the attribute that a filter compares with a constant as a number.
std::optional<std::string_view> numberIn(const FilterModel& filter) {
    const NormalFilter normal = normalFormOf(filter);
    const bool isCompared = isAttribute(normal.left) && isConstant(normal.right);
    return isCompared && filter.valueType != FilterValueType::String
               ? std::optional<std::string_view>(normal.left.operand.value)
               : std::nullopt;
}

class FallThroughSearch {
  public:
    FallThroughSearch(Judged& machine, std::vector<Finding>& found)
        : machine(machine),
          behaviour(machine.shown),
          transitions(machine.config.transitions),
          found(found),
          listening(behaviour.stateCount()) {
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            listening[behaviour.from(index)].push_back(index);
            const std::size_t filters = transitions[index].filters.size();
            const auto place =
                fewest.emplace(std::pair(behaviour.from(index), transitions[index].event), filters).first;
            place->second = std::min(place->second, filters);
        }
    }

    void searchIn(std::size_t transition) {
        const TransitionModel& model = transitions[transition];
        // What draws lets events through anyway.
        if (model.event == EventType::EnteringState || std::ranges::any_of(model.filters, draws) ||
            model.filters.size() <= fewest[{behaviour.from(transition), model.event}]) {
            return;
        }
        std::set<std::pair<FilterValueType, std::string_view>> seen;
        for (const FilterModel& filter : model.filters) {
            const auto name = numberIn(filter);
            if (name && !isPromised(model.event, *name, filter.valueType) &&
                seen.emplace(filter.valueType, *name).second && behaviour.waitsIn(behaviour.from(transition)) &&
                behaviour.canFire(transition) == Answer::Yes) {
                searchIn(transition, filter, *name);
            }
        }
    }

  private:
    bool isPromised(EventType event, std::string_view name, FilterValueType type) const {
        const Catalogue& catalogue = machine.surroundings.catalogue;
        return catalogue.promises(event, name, kindOf(type)) || catalogue.promisesInContext(name, kindOf(type));
    }

    void searchIn(std::size_t transition, const FilterModel& filter, std::string_view name) {
        const TransitionModel& model = transitions[transition];
        const Junction& junction = behaviour.junctionOf(transition);
        const std::size_t place = behaviour.targetOf(transition).transition;
        Clauses missing = {&junction.absent(kindOf(filter.valueType), name)};
        for (std::size_t index = 0; index < model.filters.size(); ++index) {
            const FilterModel& other = model.filters[index];
            if (other.valueType != filter.valueType || numberIn(other) != name) {
                missing.push_back(&junction.toHold(place, index, true));
            }
        }
        std::size_t tried = 0;
        for (const std::size_t later : listening[behaviour.from(transition)]) {
            const TransitionModel& target = transitions[later];
            const bool doesSomething = behaviour.to(later) != behaviour.from(later) || !target.actions.empty();
            if (later <= transition || target.event != model.event || !doesSomething ||
                target.filters.size() >= model.filters.size() || behaviour.canFire(later) != Answer::Yes) {
                continue;
            }
            if (++tried > kMostTried) {
                machine.wasCut = true;
                return;
            }
            // Most are left out by their own filters.
            Junction::Question question{0, missing};
            const std::size_t placeOfLater = behaviour.targetOf(later).transition;
            question.add({0, junction.toHold(placeOfLater, target.filters.size())});
            if (behaviour.decide(junction, question) != Verdict::Yes) {
                continue;
            }
            question = junction.toReach({placeOfLater});
            question.add({0, missing});
            if (behaviour.decide(junction, question) == Verdict::Yes) {
                report(filter, name, transition, later, question);
                return;
            }
        }
    }

    void report(const FilterModel& filter, std::string_view name, std::size_t transition, std::size_t later,
                const Junction::Question& question) {
        Route route = behaviour.routeToWait(behaviour.from(transition));
        route.steps.push_back({later, behaviour.targetOf(later), question});
        const auto plan = behaviour.planFor(route);
        const auto isConfirmed = [&](const Witness& witness) {
            const bool isTried = std::ranges::any_of(witness.trials, [&](const Witness::Trial& each) {
                return each.event == witness.events.size() && each.transition == transition && !each.fired &&
                       numberIn(transitions[transition].filters[each.verdicts.size() - 1]) == name;
            });
            return isTried && witness.firesAtTheEnd(later);
        };
        const auto witness =
            machine.evidence.show(machine.index, plan, "missing-falls-through at " + filter.place.path, isConfirmed);
        if (!witness && !machine.evidence.isUsedUp()) {
            machine.wasCut = true;
            return;
        }
        const TransitionModel& model = transitions[transition];
        FilterModel opposite = filter;
        opposite.op = negated(filter.op);
        warn(found, "missing-falls-through", filter.place,
             markedCondition(filter) + " is false for a " + std::string(nameOf(model.event)) + " event without " +
                 shownName(name) + ", which then fires " + shownTransition(transitions[later]) +
                 " as if it were the opposite",
             "add the filter " + markedCondition(opposite) +
                 " there, or name the attribute in a file for --catalogue if all these events have it");
        found.back().witness = witness;
    }

    Judged& machine;
    Behaviour& behaviour;
    const std::vector<TransitionModel>& transitions;
    std::vector<Finding>& found;
    std::vector<std::vector<std::size_t>> listening;                  // of each state, its transitions
    std::map<std::pair<std::size_t, EventType>, std::size_t> fewest;  // filters of one of them on the event
};

}  // namespace

void appendFallThroughWarnings(Judged& machine, std::vector<Finding>& found) {
    FallThroughSearch search(machine, found);
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        search.searchIn(index);
    }
}

}  // namespace Brenta::OS::VIG::Tool
