#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "rulesengine/FiniteStateMachine.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// Follows EnteringState transitions, depth first. One that leads to a state on the path closes a cycle.
class CycleSearch {
  public:
    CycleSearch(Judged& machine, std::vector<Finding>& found)
        : machine(machine),
          behaviour(machine.possible),
          found(found),
          followed(behaviour.stateCount()),
          depths(behaviour.stateCount(), kUnseen) {
        for (std::size_t index = 0; index < machine.config.transitions.size(); ++index) {
            if (machine.config.transitions[index].event == EventType::EnteringState &&
                behaviour.canFire(index) != Answer::No) {
                followed[behaviour.from(index)].push_back(index);
            }
        }
    }

    void searchFrom(std::size_t state) {
        if (depths[state] != kUnseen) {
            return;
        }
        enter(state);
        while (!path.empty()) {
            Step& step = path.back();
            if (step.next == followed[step.state].size()) {
                depths[step.state] = kDone;
                path.pop_back();
            } else {
                follow(followed[step.state][step.next++]);
            }
        }
    }

  private:
    static constexpr std::size_t kUnseen = static_cast<std::size_t>(-1);
    static constexpr std::size_t kDone = kUnseen - 1;

    struct Step {
        std::size_t state;
        std::size_t next;  // of the transitions followed
        bool isUncertain;
        std::size_t uncertainBefore;  // how many states on the path up to here are
    };

    void enter(std::size_t state) {
        const std::size_t before = path.empty() ? 0 : path.back().uncertainBefore + (path.back().isUncertain ? 1 : 0);
        depths[state] = path.size();
        path.push_back({state, 0, isUncertain(state), before});
    }

    void follow(std::size_t transition) {
        const std::size_t to = behaviour.to(transition);
        if (depths[to] == kUnseen) {
            enter(to);
        } else if (depths[to] != kDone) {
            report(transition, std::span(path).subspan(depths[to]));
        }
    }

    // Tells whether it depends on a filter where the machine goes from there. What comes after a transition without one
    // is shadowed.
    bool isUncertain(std::size_t state) const {
        return std::ranges::any_of(followed[state],
                                   [&](std::size_t each) { return machine.logics[each].isConditional; });
    }

    void report(std::size_t last, std::span<const Step> cycle) {
        const TransitionModel& closing = machine.config.transitions[last];
        constexpr std::size_t kMostShown = 5;
        std::string states;
        for (const Step& step : cycle.first(std::min(cycle.size(), kMostShown))) {
            states += shownQuoted(behaviour.stateName(step.state)) + " to ";
        }
        states += (cycle.size() > kMostShown ? "… to " : "") + shownQuoted(closing.to);
        const bool endless = !cycle.back().isUncertain && cycle.back().uncertainBefore == cycle.front().uncertainBefore;
        warn(found, "endless-entering", placeAt(closing, "event"),
             "EnteringState transitions lead from " + states +
                 (endless ? ", without end" : ", unless filters say otherwise") + ": one event makes up to 1000 moves",
             "let one of them listen for another event");
        found.back().severity = endless ? Severity::Error : Severity::Warning;
        found.back().witness = show(cycle, "endless-entering at " + closing.place.path, endless);
    }

    // Shows that the machine goes round once, or as long as the library lets it.
    std::shared_ptr<const Witness> show(std::span<const Step> cycle, const std::string& claim, bool endless) {
        std::vector<std::size_t> round;
        for (const Step& step : cycle) {
            round.push_back(followed[step.state][step.next - 1]);
        }
        Behaviour& shown = machine.shown;
        if (machine.evidence.isUsedUp() || shown.reaches(cycle.front().state) != Answer::Yes ||
            !std::ranges::all_of(round, [&](std::size_t each) { return shown.canFire(each) == Answer::Yes; })) {
            return nullptr;
        }
        Route route = shown.routeTo(cycle.front().state);
        route.ending = shown.targetOf(round.front());
        auto plan = shown.planFor(route);
        EventRecord entering;
        entering.type = EventType::EnteringState;
        for (std::size_t index = 1; plan && index < round.size(); ++index) {
            const DrawPlan draws = shown.junctionOf(round[index]).drawsFor(entering, shown.targetOf(round[index]));
            plan->draws.back().insert(plan->draws.back().end(), draws.numbers.begin(), draws.numbers.end());
        }
        return machine.evidence.show(machine.index, plan, claim, [&](const Witness& witness) {
            const auto moves = std::ranges::count_if(witness.trials, [&](const Witness::Trial& each) {
                return each.fired && each.event == witness.events.size() &&
                       machine.config.transitions[each.transition].event == EventType::EnteringState;
            });
            const bool isAtTheLimit =
                static_cast<std::size_t>(moves) == RulesEngine::FiniteStateMachine::MAX_ENTERING_STATE_MOVES;
            return isAtTheLimit || (!endless && std::ranges::all_of(round, [&](std::size_t each) {
                       return witness.firesAtTheEnd(each);
                   }));
        });
    }

    Judged& machine;
    Behaviour& behaviour;
    std::vector<Finding>& found;
    std::vector<std::vector<std::size_t>> followed;  // of each state, the EnteringState transitions that can fire
    std::vector<std::size_t> depths;                 // on the path, of each state that is on it
    std::vector<Step> path;
};

}  // namespace

void appendEnteringWarnings(Judged& machine, std::vector<Finding>& found) {
    CycleSearch search(machine, found);
    for (std::size_t state = 0; state < machine.possible.stateCount(); ++state) {
        if (machine.possible.reaches(state) != Answer::No) {
            search.searchFrom(state);
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
