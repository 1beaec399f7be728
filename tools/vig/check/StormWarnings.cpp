// A trigger storm is a circle of states round which one and the same event leads, again and again, and asks for a
// collection on the way.
//
// The event has to do that for certain. So a filter with a draw counts as fulfilled only by an event for which it never
// fails, and as failed only by one for which it never holds. An event then fires at most one transition of each state,
// and all transitions on its type together say where it leads: whether one leads round in a circle is a question about
// one event, asked of all of them at once.
//
// The search begins with a transition that asks for a collection, and follows all those that the same event could fire
// next, until one leads back. What is asked of the event grows with each step, so that most ways soon end.
#include "tools/vig/check/Warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <map>
#include <string>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/decide/Components.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// One search may take this part of the effort that is left. Machines of very many states that lead everywhere have more
// ways than can be tried.
constexpr std::uint64_t kPart = 4;
constexpr std::uint64_t kEffortOfStep = 10;

// Returns what is fulfilled exactly where a clause of one literal is not.
Clause oppositeOf(const Clause& clause) {
    return {{clause.front().variable, clause.front().cells.complement()}};
}

// Looks at the transitions of a machine on events of one type.
class StormSearch {
  public:
    StormSearch(Judged& machine, EventType event, std::vector<std::size_t> listening, std::vector<Finding>& found)
        : machine(machine),
          behaviour(machine.shown),
          transitions(std::move(listening)),
          junction(modelsOf(machine.config, transitions), event, {}, machine.surroundings),
          found(found),
          leastLeft(behaviour.budget().left - behaviour.budget().left / kPart) {}

    void search() {
        findSteps();
        std::vector<std::vector<std::size_t>> successors(behaviour.stateCount());
        for (const Step& each : steps) {
            successors[behaviour.from(each.transition)].push_back(each.to);
        }
        const Components components(successors);
        for (std::size_t index = 0; index < steps.size(); ++index) {
            const std::size_t from = behaviour.from(steps[index].transition);
            if (components.of[from] == components.of[steps[index].to]) {
                stepsFrom[from].push_back(index);
            }
        }
        for (const auto& [state, leaving] : stepsFrom) {
            for (const std::size_t index : leaving) {
                if (behaviour.waitsIn(state) && !steps[index].isReported) {
                    searchFrom(index);
                }
            }
        }
    }

  private:
    // It is a transition that an event may fire for certain, and where the machine waits afterwards.
    struct Step {
        std::size_t transition;
        std::size_t to;
        std::size_t place;  // among those of its state
        bool isReported = false;
    };

    // It says what an event does to a transition for certain.
    struct Fate {
        Clauses holds;
        Clause fails;
    };

    struct Node {
        std::size_t step;
        std::size_t before;  // the node before, if there is one
    };

    static std::vector<const TransitionModel*> modelsOf(const ConfigModel& config,
                                                        const std::vector<std::size_t>& transitions) {
        std::vector<const TransitionModel*> models;
        models.reserve(transitions.size());
        for (const std::size_t each : transitions) {
            models.push_back(&config.transitions[each]);
        }
        return models;
    }

    void findSteps() {
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            const std::size_t transition = transitions[index];
            std::vector<Fate>& ofState = fates[behaviour.from(transition)];
            const auto to = certainEnd(behaviour.to(transition));
            if (to && behaviour.canFire(transition) == Answer::Yes) {
                steps.push_back({transition, *to, ofState.size()});
            }
            Fate& fate = ofState.emplace_back();
            for (std::size_t filter = 0; filter < machine.config.transitions[transition].filters.size(); ++filter) {
                fate.fails.push_back(oppositeOf(junction.toHold(index, filter, true)).front());
                fate.holds.push_back(&clauses.emplace_back(oppositeOf(junction.toHold(index, filter, false))));
            }
        }
    }

    // Adds that the step is taken.
    void add(const Step& step, bool isWhole, Clauses& question) const {
        const std::vector<Fate>& ofState = fates.at(behaviour.from(step.transition));
        for (std::size_t place = 0; isWhole && place < step.place; ++place) {
            question.push_back(&ofState[place].fails);
        }
        const Clauses& holds = ofState[step.place].holds;
        question.insert(question.end(), holds.begin(), holds.end());
    }

    // Returns where the machine waits after it has come to the state, unless draws decide on that.
    std::optional<std::size_t> certainEnd(std::size_t state) {
        const Chain& chain = behaviour.chainFrom(state);
        const bool isCertain = chain.isWhole && chain.rests == std::vector{chain.stops.size() - 1} &&
                               chain.stops.back().moves + 1 == chain.stops.size();
        return isCertain ? std::optional(chain.stops.back().state) : std::nullopt;
    }

    void searchFrom(std::size_t first) {
        const TransitionModel& transition = machine.config.transitions[steps[first].transition];
        for (const ActionModel& action : transition.actions) {
            if (startsCollection(action.key) &&
                missingFor(action, junction.event(), machine.surroundings.catalogue).empty() &&
                !steps[first].isReported) {
                searchFrom(first, action);
            }
        }
    }

    void searchFrom(std::size_t first, const ActionModel& action) {
        asking.clear();
        for (const ActionNeed& need : findAction(action.key)->needs) {
            asking.push_back(&junction.present(need.kind, need.attribute));
        }
        nodes.clear();
        const std::size_t start = behaviour.from(steps[first].transition);
        bool isFound = canFollow(kNoIndex, first);
        if (isFound) {
            nodes.push_back({first, kNoIndex});
            isFound = steps[first].to == start;
        }
        for (std::size_t node = 0; node < nodes.size() && !isFound; ++node) {
            for (const std::size_t step : stepsFrom[steps[nodes[node].step].to]) {
                if (!behaviour.budget().spend(kEffortOfStep) || behaviour.budget().left < leastLeft) {
                    machine.wasCut = true;
                    return;
                }
                const std::size_t to = steps[step].to;
                if ((to == start || !isOnTheWay(node, to)) && canFollow(node, step)) {
                    nodes.push_back({step, node});
                    isFound = to == start;
                    if (isFound) {
                        break;
                    }
                }
            }
        }
        if (isFound) {
            report(action);
        }
    }

    // Tells whether the event that took the way to the node can take the step as well.
    bool canFollow(std::size_t node, std::size_t step) {
        // The filters of the transitions taken leave out most.
        for (const bool isWhole : {false, true}) {
            const Verdict verdict = behaviour.decide(junction, questionOf(node, step, isWhole));
            if (verdict != Verdict::Yes) {
                machine.wasCut = machine.wasCut || verdict == Verdict::Undecided;
                return false;
            }
        }
        return true;
    }

    // If it is not the whole question, it is that the transitions taken hold, and not that those before them fail.
    Junction::Question questionOf(std::size_t node, std::size_t step, bool isWhole) const {
        Clauses question = asking;
        add(steps[step], isWhole, question);
        for (; node != kNoIndex; node = nodes[node].before) {
            add(steps[nodes[node].step], isWhole, question);
        }
        return {0, std::move(question)};
    }

    bool isOnTheWay(std::size_t node, std::size_t state) const {
        while (node != kNoIndex && steps[nodes[node].step].to != state) {
            node = nodes[node].before;
        }
        return node != kNoIndex;
    }

    // Reports the circle that the last node closes.
    void report(const ActionModel& action) {
        std::vector<std::size_t> circle;
        for (std::size_t node = nodes.size() - 1; node != kNoIndex; node = nodes[node].before) {
            circle.push_back(nodes[node].step);
            steps[circle.back()].isReported = true;
        }
        std::ranges::reverse(circle);
        const auto witness = show(action, circle, questionOf(nodes.back().before, circle.back(), true));
        if (!witness && !machine.evidence.isUsedUp()) {
            machine.wasCut = true;
            return;
        }
        constexpr std::size_t kMostShown = 5;
        const std::string event(nameOf(junction.event()));
        const std::string first = shownQuoted(machine.config.transitions[steps[circle.front()].transition].from);
        std::string states = first;
        for (std::size_t index = 0; index + 1 < circle.size() && index + 1 < kMostShown; ++index) {
            states += " to " + shownQuoted(behaviour.stateName(steps[circle[index]].to));
        }
        states += (circle.size() > kMostShown ? " to … to " : " to ") + first;
        const std::size_t length = circle.size();
        const auto shownStep = [&](std::size_t step) {
            return shownTransition(machine.config.transitions[steps[step].transition]);
        };
        warn(found, "trigger-storm", action.place,
             length == 1
                 ? fmt::format("{} asks for a collection at every {} event that fulfils the filters, and the machine "
                               "stays in {}",
                               shownQuoted(action.name), event, first)
                 : fmt::format(
                       "{} asks for a collection once in {} {} events as long as their values stay the same: they "
                       "lead from {}",
                       shownQuoted(action.name), length, event, states),
             length == 1 ? "move to another state, or add the filter PseudoRandomDouble() < 0.1"
                         : fmt::format("the same event must not fulfil the filters of both {} and {}; or add the "
                                       "filter PseudoRandomDouble() < 0.1",
                                       shownStep(circle.front()), shownStep(circle.back())));
        found.back().witness = witness;
    }

    // Goes round twice.
    std::shared_ptr<const Witness> show(const ActionModel& action, const std::vector<std::size_t>& circle,
                                        const Junction::Question& question) {
        const std::size_t state = behaviour.from(steps[circle.front()].transition);
        auto plan = behaviour.planFor(behaviour.routeToWait(state));
        const auto event = junction.eventFor(question, behaviour.budget());
        if (!plan || !event) {
            return nullptr;
        }
        const std::size_t before = plan->events.size();
        plan->events.resize(before + 2 * circle.size(), *event);
        plan->draws.resize(plan->events.size() + 1);
        return machine.evidence.show(machine.index, plan, "trigger-storm at " + action.place.path,
                                     [&](const Witness& shown) {
                                         for (std::size_t index = 0; index < 2 * circle.size(); ++index) {
                                             const std::size_t step = circle[index % circle.size()];
                                             if (!shown.fires(steps[step].transition, before + index + 1)) {
                                                 return false;
                                             }
                                         }
                                         return std::ranges::count(shown.triggers, before + 1) > 0 &&
                                                std::ranges::count(shown.triggers, before + circle.size() + 1) > 0;
                                     });
    }

    Judged& machine;
    Behaviour& behaviour;
    const std::vector<std::size_t> transitions;  // by their place in the junction
    const Junction junction;
    std::vector<Finding>& found;
    const std::uint64_t leastLeft;                   // of the effort
    std::deque<Clause> clauses;                      // that fates refer to
    std::map<std::size_t, std::vector<Fate>> fates;  // of the transitions of each state
    std::vector<Step> steps;
    std::map<std::size_t, std::vector<std::size_t>> stepsFrom;  // of each state, those that may lead back
    Clauses asking;           // that the transition that the search began with asks for a collection
    std::vector<Node> nodes;  // of that search
};

}  // namespace

void appendStormWarnings(Judged& machine, std::vector<Finding>& found) {
    std::map<EventType, std::vector<std::size_t>> byEvent;
    std::map<EventType, bool> triggers;
    for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
        const TransitionModel& transition = machine.config.transitions[index];
        byEvent[transition.event].push_back(index);
        triggers[transition.event] = triggers[transition.event] || !machine.shown.waysToTrigger(index).empty();
    }
    for (auto& [event, listening] : byEvent) {
        if (triggers[event]) {
            StormSearch(machine, event, std::move(listening), found).search();
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
