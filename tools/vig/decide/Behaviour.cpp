#include "tools/vig/decide/Behaviour.h"

#include <algorithm>
#include <set>

#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/State.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;
using RulesEngine::FiniteStateMachine;
using RulesEngine::State;

namespace {

constexpr std::size_t kMostMoves = FiniteStateMachine::MAX_ENTERING_STATE_MOVES;

// A question is a small part of all that may be looked at, so that one that is hard leaves enough to the others.
constexpr std::uint64_t kMostOfQuestion = 2'000'000;
constexpr std::uint64_t kEffortOfStop = 20;

}  // namespace

Behaviour::Behaviour(const ConfigModel& config, const Surroundings& surroundings,
                     std::span<const FilterModel* const> further)
    : model(config), effort(surroundings.effort) {
    const auto numberOf = [&](std::string_view name) {
        const auto [place, isNew] = numbers.emplace(name, names.size());
        if (isNew) {
            names.push_back(name);
        }
        return place->second;
    };
    numberOf(State::START_STATE);
    numberOf(State::END_STATE);
    for (std::size_t index = 0; index < config.transitions.size(); ++index) {
        const TransitionModel& each = config.transitions[index];
        const std::size_t from = numberOf(each.from);
        auto& listening = crossings[{from, each.event}].transitions;
        sites.push_back({from, numberOf(each.to), nullptr, listening.size()});
        listening.push_back(index);
    }
    outgoing.resize(names.size());
    for (auto& [key, crossing] : crossings) {
        std::vector<const TransitionModel*> listening;
        for (const std::size_t index : crossing.transitions) {
            listening.push_back(&config.transitions[index]);
        }
        crossing.junction = std::make_unique<Junction>(listening, key.second, further, surroundings);
        for (const std::size_t index : crossing.transitions) {
            sites[index].junction = crossing.junction.get();
            if (key.second != EventType::EnteringState) {
                outgoing[sites[index].from].push_back(index);
            }
        }
    }
    guards.resize(sites.size());
    triggers.resize(sites.size());
    edges.resize(names.size());
    waits.resize(names.size());
    visits.resize(names.size());
    followed.resize(sites.size());
}

std::optional<std::size_t> Behaviour::stateNumber(std::string_view name) const {
    const auto found = numbers.find(name);
    return found == numbers.end() ? std::nullopt : std::optional(found->second);
}

Verdict Behaviour::decide(const Junction& junction, const Junction::Question& question, Values which) {
    Effort part{std::min(effort.left, kMostOfQuestion), effort.interruption};
    const std::uint64_t before = part.left;
    const Verdict verdict = before == 0 ? Verdict::Undecided : junction.decide(question, which, part);
    effort.spend(before - part.left);
    wasCut = wasCut || verdict == Verdict::Undecided;
    return verdict;
}

Answer Behaviour::answerTo(const Junction& junction, const Junction::Question& question) {
    for (const auto& [which, yes] :
         {std::pair(Values::Recordable, Answer::Yes), std::pair(Values::All, Answer::Unrecordable)}) {
        const Verdict verdict = decide(junction, question, which);
        if (verdict != Verdict::No) {
            return verdict == Verdict::Yes ? yes : Answer::Undecided;
        }
    }
    return Answer::No;
}

Answer Behaviour::canFire(std::size_t transition) {
    std::optional<Answer>& answer = guards[transition];
    if (!answer) {
        const Junction& junction = junctionOf(transition);
        answer = answerTo(junction, junction.toReach(targetOf(transition)));
    }
    return *answer;
}

Answer Behaviour::sees(std::size_t transition, std::size_t filter, bool outcome) {
    explore();
    const bool isEntering = model.transitions[transition].event == EventType::EnteringState;
    const Answer place = (isEntering ? visits : waits)[from(transition)].answer;
    const Junction& junction = junctionOf(transition);
    return place == Answer::No
               ? Answer::No
               : std::max(place, answerTo(junction, junction.toReach({sites[transition].index, filter, outcome})));
}

const Behaviour::Crossing* Behaviour::enteringCrossing(std::size_t state) const {
    const auto found = crossings.find({state, EventType::EnteringState});
    return found == crossings.end() ? nullptr : &found->second;
}

const Behaviour::Entering& Behaviour::enteringOf(std::size_t state) {
    const auto [place, isNew] = enterings.try_emplace(state);
    Entering& entering = place->second;
    const Crossing* const crossing = enteringCrossing(state);
    if (!isNew || crossing == nullptr) {
        return entering;
    }
    const Junction& junction = *crossing->junction;
    const auto isPossible = [&](const Junction::Question& question) {
        const Verdict verdict = decide(junction, question);
        entering.isWhole = entering.isWhole && verdict != Verdict::Undecided;
        return verdict == Verdict::Yes;
    };
    entering.canRest = isPossible(junction.toPass());
    for (std::size_t index = 0; index < junction.size(); ++index) {
        if (isPossible(junction.toReach({index}))) {
            entering.transitions.push_back(crossing->transitions[index]);
        }
    }
    return entering;
}

const Chain& Behaviour::chainFrom(std::size_t state) {
    const auto [place, isNew] = chains.try_emplace(state);
    Chain& chain = place->second;
    if (!isNew) {
        return chain;
    }
    chain.stops.push_back({state, kNoIndex, kNoIndex, 0});
    std::set<std::size_t> rested;
    std::set<std::size_t> inNext;  // the states that one move more leads to
    std::set<std::size_t> followedOnes;
    for (std::size_t index = 0; index < chain.stops.size(); ++index) {
        const Chain::Stop stop = chain.stops[index];
        if (index > 0 && chain.stops[index - 1].moves != stop.moves) {
            inNext.clear();
        }
        const Entering& entering = enteringOf(stop.state);
        chain.isWhole = chain.isWhole && entering.isWhole;
        const bool isLast = stop.moves == kMostMoves;
        if ((isLast || entering.canRest) && rested.insert(stop.state).second) {
            chain.rests.push_back(index);
        }
        for (const std::size_t each : isLast ? std::vector<std::size_t>() : entering.transitions) {
            // One of several that lead to the same state is enough, once each of them has been followed.
            const bool isNewState = inNext.insert(to(each)).second;
            if (followedOnes.insert(each).second || isNewState) {
                chain.stops.push_back({to(each), index, each, stop.moves + 1});
            }
        }
        if (!effort.spend(kEffortOfStop)) {
            chain.isWhole = false;
            wasCut = true;
            break;
        }
    }
    return chain;
}

// The strongest answers are looked for first. A state that is reached by events of records alone is reached by others
// too, so that each time only more is found.
void Behaviour::explore() {
    if (std::exchange(isExplored, true)) {
        return;
    }
    for (const Answer answer : {Answer::Yes, Answer::Unrecordable, Answer::Undecided}) {
        std::vector<bool> seen(names.size());  // entered
        std::vector<bool> left(names.size());
        std::vector<std::size_t> waiting;
        arrive(kStart, {answer, 0, kNoIndex, kNoIndex, 0}, seen, waiting);
        for (std::size_t next = 0; next < waiting.size(); ++next) {
            const std::size_t state = waiting[next];
            if (left[state]) {
                continue;
            }
            left[state] = true;
            for (const std::size_t transition : outgoing[state]) {
                if (!seen[to(transition)] && canFire(transition) <= answer) {
                    arrive(to(transition), {answer, waits[state].depth + 1, state, transition, 0}, seen, waiting);
                }
            }
        }
    }
}

void Behaviour::arrive(std::size_t entered, Arrival arrival, std::vector<bool>& seen,
                       std::vector<std::size_t>& waiting) {
    const auto note = [&](Arrival& known) {
        if (arrival.answer < known.answer) {
            known = arrival;
        }
    };
    std::vector<std::size_t> states;
    const auto enter = [&](std::size_t state) {
        if (!seen[state]) {
            seen[state] = true;
            states.push_back(state);
        }
    };
    enter(entered);
    while (!states.empty()) {
        const Chain& chain = chainFrom(states.back());
        states.pop_back();
        for (arrival.stop = 0; arrival.stop < chain.stops.size(); ++arrival.stop) {
            const Chain::Stop& stop = chain.stops[arrival.stop];
            note(visits[stop.state]);
            if (stop.transition != kNoIndex) {
                note(followed[stop.transition]);
            }
        }
        for (const std::size_t rest : chain.rests) {
            arrival.stop = rest;
            note(waits[chain.stops[rest].state]);
            waiting.push_back(chain.stops[rest].state);
        }
        // Where the chain was given up, any state may follow to which EnteringState transitions lead.
        for (std::size_t index = 0; arrival.answer == Answer::Undecided && !chain.isWhole && index < chain.stops.size();
             ++index) {
            const std::size_t stop = chain.stops[index].state;
            note(waits[stop]);
            waiting.push_back(stop);
            const Crossing* const crossing = enteringCrossing(stop);
            for (const std::size_t each : crossing != nullptr ? crossing->transitions : std::vector<std::size_t>()) {
                note(followed[each]);
                enter(to(each));
            }
        }
    }
}

Answer Behaviour::reaches(std::size_t state) {
    explore();
    return visits[state].answer;
}

Answer Behaviour::fires(std::size_t transition) {
    explore();
    if (model.transitions[transition].event == EventType::EnteringState) {
        return followed[transition].answer;
    }
    return waits[from(transition)].answer == Answer::No ? Answer::No
                                                        : std::max(waits[from(transition)].answer, canFire(transition));
}

bool Behaviour::waitsIn(std::size_t state) {
    explore();
    return waits[state].answer == Answer::Yes;
}

Route Behaviour::routeBy(const Arrival& last) {
    Route route;
    const Arrival* arrival = &last;
    for (; arrival->transition != kNoIndex; arrival = &waits[arrival->from]) {
        const Junction::Target target = targetOf(arrival->transition);
        route.steps.push_back(
            {arrival->transition, target, junctionOf(arrival->transition).toReach(target), arrival->stop});
    }
    std::ranges::reverse(route.steps);
    route.startStop = arrival->stop;
    return route;
}

Route Behaviour::routeTo(std::size_t state) {
    return routeBy(visits[state]);
}

Route Behaviour::routeToWait(std::size_t state) {
    return routeBy(waits[state]);
}

Route Behaviour::routeToFire(std::size_t transition) {
    if (model.transitions[transition].event == EventType::EnteringState) {
        return routeBy(followed[transition]);
    }
    return routeToOutcome(transition, std::nullopt, true).value_or(Route());
}

std::optional<Route> Behaviour::routeToOutcome(std::size_t transition, std::optional<std::size_t> filter,
                                               bool outcome) {
    explore();
    const bool isEntering = model.transitions[transition].event == EventType::EnteringState;
    const Arrival& place = isEntering ? visits[from(transition)] : waits[from(transition)];
    const Junction::Target target{sites[transition].index, filter, outcome};
    auto question = junctionOf(transition).toReach(target);
    if (place.answer != Answer::Yes || decide(junctionOf(transition), question) != Verdict::Yes) {
        return std::nullopt;
    }
    Route route = routeBy(place);
    if (isEntering) {
        route.ending = target;
    } else {
        route.steps.push_back({transition, target, std::move(question), 0});
    }
    return route;
}

std::size_t Behaviour::eventsUntilTried(std::size_t transition) const {
    const bool isEntering = model.transitions[transition].event == EventType::EnteringState;
    return isEntering ? visits[from(transition)].depth : waits[from(transition)].depth + 1;
}

std::vector<Junction::Question> Behaviour::waysToTrigger(std::size_t transition) const {
    const Junction& junction = junctionOf(transition);
    std::vector<Junction::Question> ways;
    for (const KnownAction& action : kActions) {
        const bool isAsked =
            std::ranges::count(model.transitions[transition].actions, action.name, &ActionModel::key) > 0;
        // A machine's own events have none of the attributes.
        if (isAsked && action.startsCollection && junction.event() != EventType::EnteringState) {
            Junction::Question& way = ways.emplace_back(junction.toReach(targetOf(transition)));
            for (const ActionNeed& need : action.needs) {
                way.clauses.push_back(&junction.present(need.kind, need.attribute));
            }
        }
    }
    return ways;
}

const Behaviour::Triggers& Behaviour::triggersOf(std::size_t transition) {
    std::optional<Triggers>& known = triggers[transition];
    if (known) {
        return *known;
    }
    known.emplace();
    // An event need not have what all actions need.
    const std::vector<Junction::Question> ways = waysToTrigger(transition);
    std::vector<std::size_t> counts;
    for (const KnownAction& action : kActions) {
        const auto count = std::ranges::count(model.transitions[transition].actions, action.name, &ActionModel::key);
        if (action.startsCollection && count > 0) {
            counts.push_back(static_cast<std::size_t>(count));
        }
    }
    for (std::size_t chosen = 1; chosen < std::size_t{1} << ways.size(); ++chosen) {
        Triggers some{0, {}};
        for (std::size_t index = 0; index < ways.size(); ++index) {
            if ((chosen >> index & 1) != 0) {
                some.count += counts[index];
                some.question.add(ways[index]);
            }
        }
        if (some.count > known->count && decide(junctionOf(transition), some.question) == Verdict::Yes) {
            known = std::move(some);
        }
    }
    return *known;
}

const std::vector<Behaviour::Edge>& Behaviour::edgesFrom(std::size_t state) {
    auto& known = edges[state];
    if (!known) {
        known.emplace();
        for (const std::size_t transition : outgoing[state]) {
            if (canFire(transition) == Answer::Yes) {
                const Chain& chain = chainFrom(to(transition));
                for (const std::size_t rest : chain.rests) {
                    known->push_back({transition, chain.stops[rest].state, rest});
                }
            }
        }
    }
    return *known;
}

std::optional<Route> Behaviour::search(const Options& options) {
    struct Node {
        std::size_t state;
        std::size_t mode;
        std::size_t before;
        RouteStep step;
    };
    std::vector<Node> nodes;
    std::map<std::pair<std::size_t, std::size_t>, bool> seen;
    const auto add = [&](Node node) {
        if (!std::exchange(seen[{node.state, node.mode}], true)) {
            nodes.push_back(std::move(node));
        }
    };
    const auto routeOf = [&](std::size_t index, std::vector<RouteStep> last) {
        for (; nodes[index].before != kNoIndex; index = nodes[index].before) {
            last.push_back(nodes[index].step);
        }
        std::ranges::reverse(last);
        return Route{nodes[index].step.stop, std::move(last)};
    };
    for (const std::size_t rest : chainFrom(kStart).rests) {
        add({chainFrom(kStart).stops[rest].state, 0, kNoIndex, {kNoIndex, {}, {}, rest}});
    }
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        const auto [state, mode] = std::pair(nodes[index].state, nodes[index].mode);
        std::vector<Option> possible;
        std::size_t last = kNoIndex;
        for (const Edge& edge : edgesFrom(state)) {
            if (std::exchange(last, edge.transition) != edge.transition) {
                possible = options(edge.transition, mode);
            }
            for (const Option& option : possible) {
                RouteStep step{edge.transition, targetOf(edge.transition), option.question, edge.stop};
                if (option.isGoal) {
                    return routeOf(index, {std::move(step)});
                }
                add({edge.to, option.mode, index, std::move(step)});
            }
            if (!effort.spend(kEffortOfStop)) {
                wasCut = true;
                return std::nullopt;
            }
        }
    }
    return std::nullopt;
}

// Adds the draws that lead along the chain to the stop, and there to the ending, or to rest.
void Behaviour::steer(const Chain& chain, std::size_t stop, const std::optional<Junction::Target>& ending,
                      DrawPlan& draws) {
    EventRecord entering;
    entering.type = EventType::EnteringState;
    const auto add = [&](std::size_t state, const std::optional<Junction::Target>& target) {
        if (const Crossing* const crossing = enteringCrossing(state)) {
            const DrawPlan more = crossing->junction->drawsFor(entering, target);
            draws.numbers.insert(draws.numbers.end(), more.numbers.begin(), more.numbers.end());
            draws.odds *= more.odds;
        }
    };
    std::vector<std::size_t> way;
    for (std::size_t at = stop; at != 0; at = chain.stops[at].before) {
        way.push_back(at);
    }
    std::ranges::reverse(way);
    for (const std::size_t at : way) {
        add(chain.stops[chain.stops[at].before].state, targetOf(chain.stops[at].transition));
    }
    const bool isRest = std::ranges::find(chain.rests, stop) != chain.rests.end();
    if (chain.stops[stop].moves < kMostMoves && (ending || isRest)) {
        add(chain.stops[stop].state, ending);
    }
}

std::optional<Plan> Behaviour::planFor(const Route& route) {
    const auto endingAfter = [&](std::size_t steps) {
        return steps == route.steps.size() ? route.ending : std::nullopt;
    };
    Plan plan;
    DrawPlan draws;
    steer(chainFrom(kStart), route.startStop, endingAfter(0), draws);
    plan.draws.push_back(draws.numbers);
    plan.odds.push_back(draws.odds);
    for (const RouteStep& step : route.steps) {
        const Junction& junction = junctionOf(step.transition);
        const auto [place, isNew] = records.try_emplace({&junction, step.question});
        std::optional<EventRecord>& record = place->second;
        if (isNew) {
            record = junction.eventFor(step.question, effort);
        }
        if (!record || !effort.spend(kEffortOfStop)) {
            wasCut = true;
            return std::nullopt;
        }
        draws = junction.drawsFor(*record, step.target);
        if (!step.target.filter) {
            steer(chainFrom(to(step.transition)), step.stop, endingAfter(plan.events.size() + 1), draws);
        }
        plan.events.push_back(*record);
        plan.draws.push_back(std::move(draws.numbers));
        plan.odds.push_back(draws.odds);
    }
    return plan;
}

}  // namespace Brenta::OS::VIG::Tool
