// The search goes from pair to pair of states in which the machines wait after the same events, those after the fewest
// events first. It asks of each pair which two ways can be gone by one event: if other things come of these, the
// machines have been told apart, and if not, another pair may follow. Most states are the same in both documents: where
// they are, an event goes the same way in either, and whether it can is asked once for all documents.

#include "tools/vig/diff/MachineDiff.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "tools/vig/diff/Odds.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

constexpr std::uint64_t kMostOfQuestion = 2'000'000;
constexpr std::uint64_t kEffortOfPair = 20;
constexpr std::uint64_t kEffortOfWay = 100;    // to ask what it demands
constexpr std::uint64_t kDemandsOfEffort = 4;  // so many are put together in the time of one
constexpr std::size_t kMostChanges = 4;

// An event of any type stands for what comes before the first one: only draws matter there.
constexpr EventType kAnyType = EventType::Test;

}  // namespace

class Differ::Search {
  public:
    Search(Differ& differ, WayFinder& changed, Values which)
        : differ(differ),
          effort(differ.surroundings.effort),
          which(which),
          machines({&differ.old, &changed}),
          fromStart({differ.old.waysFromStart(), changed.waysFromStart()}),
          newConditions(differ.conditionsOf(changed.config())) {}

    MachineDiff run() {
        nodes.push_back({{WayFinder::kStart, WayFinder::kStart}, kNoIndex, {}, {}, 0});
        visit(meetingAt(0, kAnyType), 0, EventType::EnteringState);
        for (std::size_t index = 1; index < nodes.size() && changes.empty(); ++index) {
            if (!effort.spend(kEffortOfPair)) {
                noteGap(nodes[index].events + 1);
                break;
            }
            std::set<EventType> types;
            for (std::size_t side = 0; side < machines.size(); ++side) {
                types.merge(machines[side]->heardIn(nodes[index].states[side]));
            }
            for (const EventType type : types) {
                if (!visitAlike(index, type)) {
                    visit(meetingAt(index, type), index, type);
                }
            }
        }
        if (changes.empty()) {
            return gap == kNoIndex ? MachineDiff{MachineDiff::Verdict::Same}
                                   : MachineDiff{MachineDiff::Verdict::Undecided, gap};
        }
        return which == Values::All ? MachineDiff{MachineDiff::Verdict::Unrecordable} : difference();
    }

    // Returns true if events that no record can hold may do what others cannot.
    bool hasUnrecordable() const { return isUnrecordable; }

  private:
    // The machines have come to these states by an event from those before.
    struct Node {
        Both<std::size_t> states;
        std::size_t before;
        EventType type;
        Both<std::size_t> places;                // of the transitions that the event has fired
        std::size_t events;                      // until here
        std::optional<Meeting::Pair> pair = {};  // of ways; nothing if the places tell them
    };

    struct Change {
        std::size_t node;
        EventType type;
        Meeting::Pair pair;
        std::size_t index;  // of the difference
    };

    // Returns what events of the type meet behind the node; none has come to the first one yet.
    Meeting meetingAt(std::size_t node, EventType type) {
        const auto& [old, changed] = nodes[node].states;
        return node == 0 ? Meeting(kAnyType, {&fromStart[0], &fromStart[1]}, differ.surroundings)
                         : Meeting(type, {&machines[0]->waysFrom(old, type), &machines[1]->waysFrom(changed, type)},
                                   differ.surroundings);
    }

    void noteGap(std::size_t events) { gap = std::min(gap, events); }

    Verdict ask(const Meeting& meeting, const Junction::Question& question) {
        Effort part{std::min(effort.left, kMostOfQuestion), effort.interruption};
        const std::uint64_t before = part.left;
        const Verdict verdict = before == 0 ? Verdict::Undecided : meeting.decide(question, which, part);
        if (verdict == Verdict::No && which == Values::Recordable && !isUnrecordable) {
            isUnrecordable = meeting.decide(question, Values::All, part) != Verdict::No;
        }
        effort.spend(before - part.left);
        return verdict;
    }

    void add(const Node& node) {
        if (seen.insert(node.states).second) {
            nodes.push_back(node);
        }
    }

    bool differInName(const Both<std::size_t>& at) const {
        return differ.states == States::Compared && machines[0]->stateName(at[0]) != machines[1]->stateName(at[1]);
    }

    // Returns the kinds of events by which other things come of two ways.
    std::vector<Meeting::Difference> differencesOf(const Meeting& meeting, const Meeting::Pair& pair) const {
        auto differences = meeting.differencesOf(pair);
        if (differences.empty() && differInName({meeting.way(0, pair[0]).rest, meeting.way(1, pair[1]).rest})) {
            differences.push_back({meeting.toGo(pair), {}});
        }
        return differences;
    }

    // Goes by all events of a type from a pair of states.
    void visit(const Meeting& meeting, std::size_t index, EventType type) {
        const std::size_t events = nodes[index].events + (index == 0 ? 0 : 1);
        if (!meeting.isWhole()) {
            noteGap(events);
        }
        for (std::size_t old = 0; old < meeting.wayCount(0); ++old) {
            if (!effort.spend(kEffortOfWay + meeting.wayCount(1))) {
                noteGap(events);
                return;
            }
            for (std::size_t changed = 0; changed < meeting.wayCount(1); ++changed) {
                const Meeting::Pair pair = {old, changed};
                if (meeting.isWorthAsking(pair)) {
                    goBoth(meeting, pair, {index, type, events});
                }
            }
        }
    }

    // It is an event from the node, which may be the start.
    struct From {
        std::size_t node;
        EventType type;
        std::size_t events;  // with it
    };

    void goBoth(const Meeting& meeting, const Meeting::Pair& pair, const From& from) {
        const Way& old = meeting.way(0, pair[0]);
        const Way& changed = meeting.way(1, pair[1]);
        if (!effort.spend((old.passed + old.demands.size() + changed.passed + changed.demands.size()) /
                          kDemandsOfEffort)) {
            noteGap(from.events);
            return;
        }
        const auto differences = differencesOf(meeting, pair);
        for (std::size_t each = 0; each < differences.size() && changes.size() < mostChanges; ++each) {
            const Verdict verdict = ask(meeting, differences[each].question);
            if (verdict == Verdict::Yes) {
                // With what events must have first, the most telling one is the first.
                changes.push_back({from.node, from.type, pair, each});
                break;
            }
            if (verdict == Verdict::Undecided) {
                noteGap(from.events);
            }
        }
        const Both<std::size_t> next = {old.rest, changed.rest};
        if (changes.empty() && !seen.contains(next)) {
            const Verdict verdict = ask(meeting, meeting.toGo(pair));
            if (verdict == Verdict::Yes) {
                add({next, from.node, from.type, {}, from.events, pair});
            } else if (verdict == Verdict::Undecided) {
                noteGap(from.events);
            }
        }
    }

    // Does the same where the same transitions listen in both states and nothing is drawn: each event fires the same
    // one of either. Returns false if it cannot.
    bool visitAlike(std::size_t index, EventType type) {
        const Node from = nodes[index];
        const Both<const std::vector<std::size_t>*> transitions = {&machines[0]->listening(from.states[0], type),
                                                                   &machines[1]->listening(from.states[1], type)};
        if (transitions[0]->size() != transitions[1]->size()) {
            return false;
        }
        for (std::size_t place = 0; place < transitions[0]->size(); ++place) {
            const auto condition = differ.oldConditions[(*transitions[0])[place]];
            if (!condition || condition != newConditions[(*transitions[1])[place]]) {
                return false;
            }
        }
        const Firings& firings = firingsOf(from.states[0], type);
        std::vector<Both<std::size_t>> next;
        for (std::size_t place = 0; place < firings.size(); ++place) {
            const auto& through = machines[0]->wayThrough((*transitions[0])[place]);
            const auto& newThrough = machines[1]->wayThrough((*transitions[1])[place]);
            if (!through || !newThrough) {
                return false;
            }
            const auto& [verdict, canOtherwise] = firings[place];
            next.push_back({through->rest, newThrough->rest});
            const bool isSame = through->effects == newThrough->effects && !differInName(next.back());
            if (!isSame && (verdict != Verdict::No || canOtherwise)) {
                return false;
            }
        }
        for (std::size_t place = 0; place < firings.size(); ++place) {
            const auto& [verdict, canOtherwise] = firings[place];
            isUnrecordable = isUnrecordable || canOtherwise;
            if (verdict == Verdict::Undecided && !seen.contains(next[place])) {
                noteGap(from.events + 1);
            } else if (verdict == Verdict::Yes || (canOtherwise && which == Values::All)) {
                add({next[place], index, type, {place, place}, from.events + 1});
            }
        }
        return true;
    }

    const Firings& firingsOf(std::size_t state, EventType type) {
        const auto [place, isNew] = differ.firings.try_emplace({state, type});
        Firings& firings = place->second;
        if (isNew || std::ranges::count(firings, Verdict::Undecided, &Firing::verdict) > 0) {
            const Ways& ways = machines[0]->waysFrom(state, type);
            const Meeting meeting(type, {&ways, &ways}, differ.surroundings);
            firings.assign(machines[0]->listening(state, type).size(), {Verdict::No, false});
            for (std::size_t way = 0; way < ways.ways.size(); ++way) {
                if (ways.ways[way].place < firings.size()) {
                    const auto question = meeting.toGo({way, way});
                    Effort part{std::min(effort.left, kMostOfQuestion), effort.interruption};
                    const std::uint64_t before = part.left;
                    const Verdict verdict = meeting.decide(question, Values::Recordable, part);
                    const bool canOtherwise =
                        verdict == Verdict::No && meeting.decide(question, Values::All, part) != Verdict::No;
                    firings[ways.ways[way].place] = {verdict, canOtherwise};
                    effort.spend(before - part.left);
                }
            }
        }
        return firings;
    }

    MachineDiff difference() {
        const std::size_t node = changes.front().node;
        MachineDiff diff{MachineDiff::Verdict::Different, nodes[node].events + (node == 0 ? 0 : 1)};
        diff.isShortest = diff.events <= gap;
        if (!planUntil(node, diff.plan)) {
            return {MachineDiff::Verdict::Undecided, diff.events};
        }
        for (const Change& each : changes) {
            const Meeting meeting = meetingAt(node, each.type);
            const auto [question, outcomes] = differencesOf(meeting, each.pair)[each.index];
            const auto occasion = meeting.occasionFor(each.pair, question, effort);
            const bool isFirst = &each == &changes.front();
            if (!occasion) {
                return isFirst ? MachineDiff{MachineDiff::Verdict::Undecided, diff.events} : diff;
            }
            if (isFirst) {
                append(*occasion, node == 0, diff.plan);
            }
            if (differ.words == Words::Wanted) {
                diff.changes.push_back({each.type, outcomes, meeting.extentsAround(*occasion, question, effort),
                                        !occasion->numbers.empty()});
            }
        }
        if (differ.words == Words::Wanted) {
            const bool isDrawn = std::ranges::any_of(diff.plan.draws, [](const auto& each) { return !each.empty(); });
            diff.areOddsSame = isDrawn && haveSameOdds(machines, differ.surroundings, differ.states);
            const auto& [old, changed] = nodes[node].states;
            diff.states = {std::string(machines[0]->stateName(old)), std::string(machines[1]->stateName(changed))};
        }
        return diff;
    }

    static void append(const Meeting::Occasion& occasion, bool isAtStart, Plan& plan) {
        if (!isAtStart) {
            plan.events.push_back(occasion.record);
        }
        plan.draws.push_back(occasion.numbers);
    }

    // Adds what leads to the node. Returns false if it could not be found within the effort.
    bool planUntil(std::size_t node, Plan& plan) {
        std::vector<std::size_t> steps;
        for (; node != 0; node = nodes[node].before) {
            steps.push_back(node);
        }
        std::ranges::reverse(steps);
        for (const std::size_t step : steps) {
            const Node& to = nodes[step];
            const Meeting meeting = meetingAt(to.before, to.type);
            Meeting::Pair pair = {};
            for (std::size_t side = 0; side < machines.size(); ++side) {
                pair[side] = meeting.wayThrough(side, to.places[side]);
            }
            pair = to.pair.value_or(pair);
            const auto occasion = meeting.occasionFor(pair, meeting.toGo(pair), effort);
            if (!occasion) {
                return false;
            }
            append(*occasion, to.before == 0, plan);
        }
        return true;
    }

    Differ& differ;
    Effort& effort;
    const Values which;
    const std::size_t mostChanges = differ.words == Words::Wanted ? kMostChanges : 1;
    const Both<WayFinder*> machines;
    const Both<Ways> fromStart;
    const std::vector<std::optional<std::size_t>> newConditions;
    std::vector<Node> nodes;  // the first one is before the start
    std::set<Both<std::size_t>> seen;
    std::vector<Change> changes;
    std::size_t gap = kNoIndex;  // the least number of events after which something was not decided
    bool isUnrecordable = false;
};

Differ::Differ(const ConfigModel& config, const Surroundings& surroundings, States states, Words words)
    : surroundings(surroundings), states(states), words(words), old(config, surroundings) {
    for (const TransitionModel& each : config.transitions) {
        conditions.emplace(&each.filters, conditions.size());
    }
    oldConditions = conditionsOf(config);
}

bool Differ::ComesBefore::operator()(const std::vector<FilterModel>* left,
                                     const std::vector<FilterModel>* right) const {
    const auto saidBy = [](const FilterModel& each) {
        const auto& [one, other] = std::tie(each.operand1.operand, each.operand2.operand);
        return std::tie(each.op, each.valueType, one.type, one.value, other.type, other.value);
    };
    return std::ranges::lexicographical_compare(*left, *right, {}, saidBy, saidBy);
}

std::vector<std::optional<std::size_t>> Differ::conditionsOf(const ConfigModel& config) const {
    std::vector<std::optional<std::size_t>> numbers;
    for (const TransitionModel& transition : config.transitions) {
        const bool isDrawn =
            std::ranges::any_of(transition.filters, [](const FilterModel& each) { return numbersDrawnBy(each) > 0; });
        const auto found = conditions.find(&transition.filters);
        numbers.push_back(isDrawn || found == conditions.end() ? std::nullopt : std::optional(found->second));
    }
    return numbers;
}

// What is written alike does the same, also where it could not be decided.
bool Differ::isWrittenAlike(const ConfigModel& changed) const {
    return std::ranges::equal(
        old.config().transitions, changed.transitions, [](const TransitionModel& left, const TransitionModel& right) {
            constexpr ComesBefore comesBefore;
            return left.from == right.from && left.to == right.to && left.event == right.event &&
                   !comesBefore(&left.filters, &right.filters) && !comesBefore(&right.filters, &left.filters) &&
                   std::ranges::equal(left.actions, right.actions, {}, &ActionModel::key, &ActionModel::key);
        });
}

MachineDiff Differ::to(const ConfigModel& changed) {
    if (isWrittenAlike(changed)) {
        return {MachineDiff::Verdict::Same};
    }
    WayFinder finder(changed, surroundings);
    Search search(*this, finder, Values::Recordable);
    const MachineDiff diff = search.run();
    const bool canBeOtherwise = diff.verdict == MachineDiff::Verdict::Same && search.hasUnrecordable();
    return canBeOtherwise ? Search(*this, finder, Values::All).run() : diff;
}

}  // namespace Brenta::OS::VIG::Tool
