#include "tools/vig/check/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <unordered_set>

#include "tools/vig/words/NearestName.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Unseen.h"

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
          uses(behaviour.stateCount()),
          isChained(behaviour.stateCount()) {
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            outgoing[behaviour.from(index)].push_back(index);
            incoming[behaviour.to(index)].push_back(index);
            ++uses[behaviour.from(index)];
            ++uses[behaviour.to(index)];
        }
        follow(behaviour, outgoing, Behaviour::kStart, isChained);
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
        const std::vector<Spelling> spellings = misspelt(done);
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            for (const auto& [state, member] :
                 {std::pair(behaviour.from(index), "from_state"), std::pair(behaviour.to(index), "to_state")}) {
                if (done[state]) {
                    continue;
                }
                const auto spelling = std::ranges::find(spellings, state, &Spelling::state);
                if (spelling != spellings.end()) {
                    done[state] = true;
                    warnOf(*spelling, placeOf(transitions[index], member));
                } else if (behaviour.reaches(state) == Answer::No) {
                    done[state] = true;
                    const std::string reason = isChained[state] ? whyUnreachable(state) : "";
                    if (reason.starts_with(kNorBefore)) {
                        if (following.size() == kMostFollowing) {
                            ++others;
                            continue;
                        }
                        following.push_back(found.size());
                    }
                    warn(found, "unreachable-state", placeOf(transitions[index], member),
                         (isChained[state] ? "the machine never comes to "
                                           : "no chain of transitions leads from \"start\" to ") +
                             shownQuoted(behaviour.stateName(state)) + reason,
                         isChained[state] ? "mend what leads there, or leave it out"
                                          : "lead a transition there, or leave it out");
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
        for (const std::size_t state : explained) {
            accepted[state] = true;
        }
        acceptSeenAsLeft(accepted);
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
                     seemsAccepted[to] ? "mend their filters" : hintToLeave(to));
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

    // Marks states that cannot be left, if one that can is seen as the same: an invisible-character tells it.
    void acceptSeenAsLeft(std::vector<bool>& accepted) const {
        std::unordered_set<std::string> left;
        for (std::size_t state = 0; state < behaviour.stateCount(); ++state) {
            if (!outgoing[state].empty()) {
                left.insert(seenOf(behaviour.stateName(state)));
            }
        }
        for (std::size_t state = 0; state < behaviour.stateCount(); ++state) {
            accepted[state] =
                accepted[state] || (outgoing[state].empty() && left.contains(seenOf(behaviour.stateName(state))));
        }
    }

    // It is a state to which no chain of transitions leads, and others whose names are near.
    struct Spelling {
        std::size_t state;
        std::vector<std::size_t> others;  // that a chain of transitions leads to
    };

    // Returns the states that are left and never entered, because their names are misspelt here or where they are
    // entered. What is behind them is `done`, too, since it follows from that.
    std::vector<Spelling> misspelt(std::vector<bool>& done) {
        constexpr std::size_t kMost = 16;  // so many are no mistakes of spelling
        std::vector<Spelling> spellings;
        std::vector<bool> isBehind(behaviour.stateCount());
        for (std::size_t state = 0; state < behaviour.stateCount() && spellings.size() < kMost; ++state) {
            const bool isEntered =
                std::ranges::any_of(incoming[state], [&](std::size_t each) { return behaviour.from(each) != state; });
            if (isChained[state] || isEntered || outgoing[state].empty()) {
                continue;
            }
            if (auto others = nearOnes(state, [&](std::size_t each) { return isChained[each]; }); !others.empty()) {
                follow(behaviour, outgoing, state, isBehind);
                spellings.push_back({state, std::move(others)});
            }
        }
        for (std::size_t state = 0; state < behaviour.stateCount(); ++state) {
            const bool isMisspelt = std::ranges::find(spellings, state, &Spelling::state) != spellings.end();
            done[state] = done[state] || (isBehind[state] && !isChained[state] && !isMisspelt);
        }
        return spellings;
    }

    // Returns the states whose names are seen as the same, or else those with names that are near, those first that
    // cannot be left. Names that differ in numbers alone are meant. In a machine with many states that ask for it, the
    // last ones get none, so that this takes no time to speak of.
    std::vector<std::size_t> nearOnes(std::size_t state, const auto& isCandidate) {
        constexpr std::size_t kMost = 64;
        constexpr std::size_t kMostAsking = 32;
        const std::string_view name = behaviour.stateName(state);
        const std::string seen = seenOf(name);
        const std::string bare = withoutDigits(name);
        std::vector<std::size_t> candidates;
        if (askingForNear++ >= kMostAsking) {
            return candidates;
        }
        for (std::size_t each = 0; each < behaviour.stateCount(); ++each) {
            if (each != state && isCandidate(each)) {
                if (seenOf(behaviour.stateName(each)) == seen) {
                    return {each};
                }
                if (candidates.size() < kMost && withoutDigits(behaviour.stateName(each)) != bare) {
                    candidates.push_back(each);
                }
            }
        }
        std::stable_partition(candidates.begin(), candidates.end(),
                              [&](std::size_t each) { return outgoing[each].empty(); });
        std::vector<std::string_view> names;
        std::ranges::transform(candidates, std::back_inserter(names),
                               [&](std::size_t each) { return std::string_view(behaviour.stateName(each)); });
        const auto near = nearNames(name, names);
        std::erase_if(candidates, [&](std::size_t each) {
            return std::ranges::find(near, behaviour.stateName(each)) == near.end();
        });
        return candidates;
    }

    static std::string withoutDigits(std::string_view name) {
        std::string result(name);
        std::erase_if(result, [](char each) { return each >= '0' && each <= '9'; });
        return result;
    }

    // A name that occurs once may itself be the misspelt one.
    void warnOf(const Spelling& spelling, Place place) {
        const std::string name = shownQuoted(behaviour.stateName(spelling.state));
        const std::size_t other = spelling.others.front();
        const std::string otherName = shownQuoted(behaviour.stateName(other));
        std::string message = "no chain of transitions leads from \"start\" to " + name;
        std::string hint = "did you mean " + listOfNames(spelling.others) + "?";
        if (other != Behaviour::kStart && outgoing[other].empty()) {
            message = name + " is left here and never entered, and " + otherName + " is entered by " +
                      shownTransition(transitions[incoming[other].front()]) + " and never left";
            explained.push_back(other);
        }
        if (seenOf(behaviour.stateName(spelling.state)) == seenOf(behaviour.stateName(other))) {
            return;  // an invisible-character tells it
        }
        if (other != Behaviour::kStart && uses[other] == 1) {
            hint = uses[spelling.state] == 1 ? "write the same name in both places"
                                             : "did you mean " + name + " in both places?";
        }
        warn(found, "unreachable-state", std::move(place), std::move(message), std::move(hint));
    }

    std::string listOfNames(const std::vector<std::size_t>& states) const {
        return joined(states, " or ", [&](std::size_t each) { return shownQuoted(behaviour.stateName(each)); });
    }

    std::string hintToLeave(std::size_t state) {
        const auto others = nearOnes(state, [&](std::size_t each) {
            const bool isBuiltIn = each == Behaviour::kStart || each == Behaviour::kEnd;
            return isBuiltIn || (uses[each] > 1 && !outgoing[each].empty());
        });
        const bool isEnd = !others.empty() && others.front() == Behaviour::kEnd;
        return others.empty() ? "if that is meant, call the state \"end\""
                              : "did you mean " + listOfNames(others) + "?" +
                                    (isEnd ? "" : " Or call the state \"end\" if the machine is to stay there");
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
    std::vector<std::size_t> uses;       // how often a transition names the state
    std::vector<std::size_t> explained;  // states whose end another warning tells
    std::size_t askingForNear = 0;       // states
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
