// A transition that draws chooses a share of what comes. Three things tell what an author means by it: whether an
// action lies behind the transition, whether another one takes what the draw does not let through, and whether an
// action lies behind that one. A draw with an action behind it chooses. One without lets go, and is meant for the
// larger share. Where actions lie behind both, it divides, and either side may be the larger one.
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/check/DrawShare.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Judging a transition may look at all others. So many draws are in no document that a person has written.
constexpr std::size_t kMostJudged = 256;

class SamplingJudge {
  public:
    SamplingJudge(Judged& machine, std::vector<Finding>& found)
        : behaviour(machine.possible),
          transitions(machine.config.transitions),
          found(found),
          outgoing(behaviour.stateCount()) {
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            outgoing[behaviour.from(index)].push_back(index);
            std::vector<std::string>& others = conditions.emplace_back();
            for (const FilterModel& filter : transitions[index].filters) {
                if (!samples(shareOf(filter))) {
                    others.push_back(conditionOf(filter));
                }
            }
            if (others.size() < transitions[index].filters.size()) {
                if (drawing.size() == kMostJudged) {
                    machine.wasCut = true;
                } else {
                    drawing.push_back(index);
                }
            }
            std::ranges::sort(others);
        }
    }

    void judge() {
        std::map<double, std::vector<std::size_t>> byShare;  // those that choose
        for (const std::size_t index : drawing) {
            const Kind kind = kindOf(index);
            const bool isOne = conditions[index].size() + 1 == transitions[index].filters.size();
            for (const FilterModel& filter : transitions[index].filters) {
                const auto share = shareOf(filter);
                const std::size_t other = samples(share) && isOne ? otherSideOf(index, *share) : kNoIndex;
                if (other != kNoIndex) {
                    warnOfSplit(filter, *share, transitions[other]);
                } else if (samples(share) && kind == Kind::Chooses) {
                    if (isOne) {
                        warnOfSide(filter, *share);
                    }
                    if (byShare[*share].empty() || byShare[*share].back() != index) {
                        byShare[*share].push_back(index);
                    }
                }
            }
        }
        for (const auto& [share, choosing] : byShare) {
            if (choosing.size() > 1) {
                warnOfRepeats(share, choosing);
            }
        }
    }

  private:
    enum class Kind { Chooses, LetsGo, Divides };

    // Says how much an action is worth to an author.
    static int weightOf(const TransitionModel& transition) {
        const auto& actions = transition.actions;
        return actions.empty()                                                                                    ? 0
               : std::ranges::any_of(actions, [](const ActionModel& each) { return startsCollection(each.key); }) ? 2
                                                                                                                  : 1;
    }

    Kind kindOf(std::size_t index) const {
        const std::size_t rest = restOf(index);
        const bool acts = leadsToAction(index);
        if (rest == kNoIndex || !leadsToAction(rest)) {
            return acts ? Kind::Chooses : Kind::LetsGo;
        }
        return !acts || weightOf(transitions[rest]) > weightOf(transitions[index]) ? Kind::LetsGo : Kind::Divides;
    }

    // Returns the transition that fires instead if the draw alone keeps this one from firing.
    std::size_t restOf(std::size_t index) const {
        const std::vector<std::size_t>& leaving = outgoing[behaviour.from(index)];
        for (auto each = std::ranges::upper_bound(leaving, index); each != leaving.end(); ++each) {
            const bool isFree = conditions[*each].size() == transitions[*each].filters.size();
            if (transitions[*each].event == transitions[index].event && isFree &&
                std::ranges::includes(conditions[index], conditions[*each])) {
                return *each;
            }
        }
        return kNoIndex;
    }

    // Tells whether the transition has an action, or one may follow before the machine is back in the same state.
    bool leadsToAction(std::size_t index) const {
        std::vector<bool> seen(behaviour.stateCount());
        seen[behaviour.from(index)] = true;
        std::vector<std::size_t> waiting = {index};
        while (!waiting.empty()) {
            const std::size_t each = waiting.back();
            waiting.pop_back();
            if (!transitions[each].actions.empty()) {
                return true;
            }
            const std::size_t to = behaviour.to(each);
            if (!seen[to]) {
                seen[to] = true;
                waiting.insert(waiting.end(), outgoing[to].begin(), outgoing[to].end());
            }
        }
        return false;
    }

    // Returns an earlier transition that draws for what this share leaves, under the same conditions.
    std::size_t otherSideOf(std::size_t index, double share) const {
        constexpr double kRounding = 1e-9;
        for (const std::size_t each : outgoing[behaviour.from(index)]) {
            const auto& filters = transitions[each].filters;
            const bool isOne = conditions[each].size() + 1 == filters.size();
            if (each < index && isOne && transitions[each].event == transitions[index].event &&
                conditions[each] == conditions[index] && std::ranges::any_of(filters, [&](const FilterModel& filter) {
                    const auto other = shareOf(filter);
                    return samples(other) && std::abs(*other + share - 1) < kRounding;
                })) {
                return each;
            }
        }
        return kNoIndex;
    }

    // Who writes both sides of a share expects one draw to choose between them.
    void warnOfSplit(const FilterModel& filter, double share, const TransitionModel& other) {
        warn(found, "repeated-draw", normalFormOf(filter).left.place,
             markedCondition(filter) + " draws anew, after " + shownTransition(other) + ": both together let only " +
                 shownPercent(share * share) + " through here",
             "leave the filter out: what the other one leaves comes here");
    }

    void warnOfSide(const FilterModel& filter, double share) {
        const NormalFilter normal = normalFormOf(filter);
        if (share > 0.5 && (normal.op == FilterOperator::Greater || normal.op == FilterOperator::GreaterEqual)) {
            const std::string below = "write " + normal.left.operand.value + "() < ";
            const std::string opposite = shownPercent(1 - share);
            warn(found, "inverted-share", placeOf(filter, "operator"),
                 markedCondition(filter) + " lets " + shownPercent(share) + " through, not " + opposite,
                 below + shownNumber(1 - share) + " if " + opposite + " is meant, otherwise " + below +
                     shownNumber(share));
        }
    }

    // A share that is drawn twice before anything comes of it is meant once.
    void warnOfRepeats(double share, const std::vector<std::size_t>& choosing) {
        std::vector<bool> isChoosing(transitions.size());
        for (const std::size_t each : choosing) {
            isChoosing[each] = transitions[each].actions.empty() && behaviour.from(each) != behaviour.to(each);
        }
        const std::vector<Draws> drawn = leastDraws(isChoosing);
        for (const std::size_t each : choosing) {
            const Draws& before = drawn[behaviour.from(each)];
            if (before.isReached && before.count > 0) {
                warnOfRepeat(each, before, share);
            }
        }
    }

    // It says how often the share was drawn on the way to a state since an action or the start, on the way with the
    // fewest draws.
    struct Draws {
        bool isReached = false;
        std::size_t count = 0;
        std::size_t last = kNoIndex;  // transition that drew
    };

    std::vector<Draws> leastDraws(const std::vector<bool>& isChoosing) const {
        std::vector<Draws> result(behaviour.stateCount());
        std::vector<bool> reached(behaviour.stateCount());
        follow(behaviour, outgoing, Behaviour::kStart, reached);
        std::vector<std::vector<std::size_t>> levels(1);  // states by the count
        const auto arrive = [&](std::size_t state, std::size_t count, std::size_t last) {
            Draws& draws = result[state];
            if (!draws.isReached || count < draws.count) {
                draws = {true, count, last};
                levels.resize(std::max(levels.size(), count + 1));
                levels[count].push_back(state);
            }
        };
        arrive(Behaviour::kStart, 0, kNoIndex);
        for (std::size_t index = 0; index < transitions.size(); ++index) {
            if (reached[behaviour.from(index)] && !transitions[index].actions.empty()) {
                arrive(behaviour.to(index), 0, kNoIndex);
            }
        }
        for (std::size_t count = 0; count < levels.size(); ++count) {
            for (std::size_t place = 0; place < levels[count].size(); ++place) {
                const std::size_t state = levels[count][place];
                if (result[state].count == count) {
                    for (const std::size_t each : outgoing[state]) {
                        arrive(behaviour.to(each), count + (isChoosing[each] ? 1 : 0),
                               isChoosing[each] ? each : result[state].last);
                    }
                }
            }
        }
        return result;
    }

    void warnOfRepeat(std::size_t index, const Draws& before, double share) {
        const auto& filters = transitions[index].filters;
        const auto filter = std::ranges::find_if(filters, [&](const auto& each) { return shareOf(each) == share; });
        double whole = share;
        for (std::size_t count = 0; count < before.count; ++count) {
            whole *= share;
        }
        warn(found, "repeated-draw", normalFormOf(*filter).left.place,
             markedCondition(*filter) + " draws anew, after " + shownTransition(transitions[before.last]) +
                 " on the way here: " + (before.count > 1 ? "all" : "both") + " together let " + shownPercent(whole) +
                 " through",
             "leave the filter out here, or there");
    }

    Behaviour& behaviour;
    const std::vector<TransitionModel>& transitions;
    std::vector<Finding>& found;
    std::vector<std::vector<std::size_t>> outgoing;
    std::vector<std::vector<std::string>> conditions;  // of each transition, its filters that draw no share, sorted
    std::vector<std::size_t> drawing;                  // transitions
};

}  // namespace

void appendSamplingWarnings(Judged& machine, std::vector<Finding>& found) {
    SamplingJudge(machine, found).judge();
}

}  // namespace Brenta::OS::VIG::Tool
