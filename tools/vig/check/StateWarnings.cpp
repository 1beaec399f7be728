#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

class StateJudge {
  public:
    StateJudge(Judged& machine, std::vector<Finding>& found)
        : machine(machine),
          behaviour(machine.possible),
          transitions(machine.config.transitions),
          found(found),
          outgoing(behaviour.stateCount()),
          incoming(behaviour.stateCount()),
          isChained(behaviour.stateCount()) {
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            outgoing[behaviour.from(index)].push_back(index);
            incoming[behaviour.to(index)].push_back(index);
        }
        std::vector<std::size_t> waiting = {Behaviour::kStart};
        while (!waiting.empty()) {
            const std::size_t state = waiting.back();
            waiting.pop_back();
            if (!isChained[state]) {
                isChained[state] = true;
                std::ranges::transform(outgoing[state], std::back_inserter(waiting),
                                       [&](std::size_t each) { return behaviour.to(each); });
            }
        }
    }

    // Each state is named once, at its first transition. Of those that are lost with one before them only some are
    // named.
    void appendUnreachable() {
        constexpr std::size_t kMostFollowing = 3;
        std::vector<std::size_t> following;  // findings
        std::size_t others = 0;
        std::vector<bool> done(behaviour.stateCount());
        // It is there without being used.
        done[Behaviour::kEnd] = outgoing[Behaviour::kEnd].empty();
        const auto candidates = strayTargets();
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            for (const auto& [state, member] :
                 {std::pair(behaviour.from(index), "from_state"), std::pair(behaviour.to(index), "to_state")}) {
                if (!done[state] && behaviour.reaches(state) == Answer::No) {
                    done[state] = true;
                    const std::string reason = isChained[state] ? whyUnreachable(state) : "";
                    if (reason.starts_with(kNorBefore)) {
                        if (following.size() == kMostFollowing) {
                            ++others;
                            continue;
                        }
                        following.push_back(found.size());
                    }
                    const std::string hint = asHint(suggestion(behaviour.stateName(state), candidates));
                    warn(found, "unreachable-state", placeOf(transitions[index], member),
                         (isChained[state] ? "the machine never comes to "
                                           : "no chain of transitions leads from \"start\" to ") +
                             shownQuoted(behaviour.stateName(state)) + reason,
                         isChained[state] ? "mend what leads there, or leave it out"
                         : hint.empty()   ? "lead a transition there, or leave it out"
                                          : hint);
                }
            }
        }
        if (others > 0) {
            found[following.back()].message += "; likewise " + std::to_string(others) + " more behind these";
        }
    }

    // Each state is named once, at the first transition that leads there.
    void appendNoWayOut() {
        std::vector<bool> accepted(behaviour.stateCount());  // something can come of being there, or there is a warning
        std::vector<bool> seemsAccepted(behaviour.stateCount());  // would be, if all transitions fired
        accepted[Behaviour::kEnd] = true;
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            const std::size_t from = behaviour.from(index);
            const bool doesSomething = behaviour.to(index) != from || !transitions[index].actions.empty();
            seemsAccepted[from] = seemsAccepted[from] || doesSomething;
            accepted[from] = accepted[from] || (doesSomething && behaviour.canFire(index) != Answer::No);
        }
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            const std::size_t to = behaviour.to(index);
            if (!accepted[to] && behaviour.fires(index) != Answer::No) {
                accepted[to] = true;
                warn(found, "no-way-out", placeOf(transitions[index], "to_state"),
                     "once in " + shownQuoted(behaviour.stateName(to)) + ", the machine does nothing any more" +
                         (seemsAccepted[to] ? ": none of the transitions from there ever fires" : ""),
                     seemsAccepted[to] ? "mend their filters" : "if that is meant, call the state \"end\"");
                found.back().witness = showWaiting(to, "no-way-out at " + transitions[index].place.path);
            }
        }
    }

  private:
    static constexpr std::string_view kNorBefore = ", nor to ";

    std::shared_ptr<const Witness> showWaiting(std::size_t state, const std::string& claim) {
        if (!machine.shown.waitsIn(state) || machine.evidence.isUsedUp()) {
            return nullptr;
        }
        const auto plan = machine.shown.planFor(machine.shown.routeToWait(state));
        return machine.evidence.show(machine.index, plan, claim, [&](const Witness& witness) {
            const auto last = std::find_if(witness.trials.rbegin(), witness.trials.rend(),
                                           [](const Witness::Trial& each) { return each.fired; });
            const bool isAtStart = last == witness.trials.rend();
            return isAtStart ? state == Behaviour::kStart : behaviour.to(last->transition) == state;
        });
    }

    // Returns the states that can be reached and not be left: one of them may be a misspelt name. Many are no mistake
    // of spelling.
    std::vector<std::string_view> strayTargets() const {
        constexpr std::size_t kMost = 16;
        std::vector<std::string_view> names;
        for (std::size_t state = 0; state < outgoing.size() && names.size() < kMost; ++state) {
            if (isChained[state] && state != Behaviour::kEnd && outgoing[state].empty()) {
                names.push_back(behaviour.stateName(state));
            }
        }
        return names;
    }

    // Returns the end of the sentence that the machine never comes there. REQUIRES: a chain of transitions does.
    std::string whyUnreachable(std::size_t state) {
        std::string reason;
        for (const std::size_t each : incoming[state]) {
            const std::string before = shownQuoted(behaviour.stateName(behaviour.from(each)));
            if (behaviour.reaches(behaviour.from(each)) == Answer::No) {
                if (reason.empty() && behaviour.from(each) != state) {
                    reason = std::string(kNorBefore) + before + " before it";
                }
            } else if (behaviour.canFire(each) == Answer::No) {
                reason = ": none of the transitions that could lead there ever fires";
            } else if (transitions[each].event == EventType::EnteringState) {
                reason = ": EnteringState transitions end after 1000 moves, in " + before;
                break;
            } else {
                reason = ": EnteringState transitions always leave " + before + " at once, before an event leads on";
                break;
            }
        }
        return reason;
    }

    Judged& machine;
    Behaviour& behaviour;
    const std::vector<TransitionModel>& transitions;
    std::vector<Finding>& found;
    std::vector<std::vector<std::size_t>> outgoing;
    std::vector<std::vector<std::size_t>> incoming;
    std::vector<bool> isChained;  // a chain of transitions leads there from "start", whether they can fire or not
};

}  // namespace

void appendStateWarnings(Judged& machine, std::vector<Finding>& found) {
    StateJudge judge(machine, found);
    judge.appendUnreachable();
    judge.appendNoWayOut();
    for (const TransitionModel& transition : machine.config.transitions) {
        if (transition.event == EventType::Timeout) {
            warn(found, "unused-timeout", placeOf(transition, "event"),
                 "nothing arms a timeout by itself: only a service that does so sends the event",
                 "ask the owner of the service");
        }
    }
}

}  // namespace Brenta::OS::VIG::Tool
