#include "tools/vig/trace/Tally.h"

#include "rulesengine/State.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

std::uint64_t countOf(const auto& counts, std::string_view state, EventType type) {
    const auto ofState = counts.find(state);
    if (ofState == counts.end()) {
        return 0;
    }
    const auto found = ofState->second.find(type);
    return found == ofState->second.end() ? 0 : found->second;
}

void count(auto& counts, std::string_view state, EventType type) {
    auto ofState = counts.find(state);
    if (ofState == counts.end()) {
        ofState = counts.emplace(state, std::map<EventType, std::uint64_t>()).first;
    }
    ++ofState->second[type];
}

}  // namespace

void Tally::loaded(const DocumentModel& loaded) {
    document = &loaded;
    machines.assign(loaded.configs.size(), {});
    for (std::size_t i = 0; i < machines.size(); ++i) {
        for (const TransitionModel& each : loaded.configs[i].transitions) {
            machines[i].leadingTo[each.to].push_back(machines[i].transitions.size());
            machines[i].transitions.push_back({0, 0, std::vector<WhyNot::Stops>(each.filters.size())});
        }
        machines[i].visited.emplace(RulesEngine::State::START_STATE);
    }
}

void Tally::pass(const Step& step) {
    auto& visited = machines[step.machine.index].visited;
    const auto visit = [&visited](std::string_view state) {
        if (!visited.contains(state)) {
            visited.emplace(state);
        }
    };
    visit(step.state);
    if (step.fired()) {
        visit(step.attempts.back().transition->to);
    }
}

void Tally::step(const Step& step) {
    pass(step);
    OfMachine& machine = machines[step.machine.index];
    count(step.raised ? machine.raised : machine.offered, step.state, step.type);
    for (const Attempt& attempt : step.attempts) {
        OfTransition& transition = machine.transitions[attempt.index];
        ++transition.tried;
        if (attempt.fired) {
            ++transition.fired;
            continue;
        }
        const Comparison& last = attempt.comparisons.back();
        auto& [stopped, nearest] = transition.stops[attempt.comparisons.size() - 1];
        ++stopped;
        const auto miss = missOf(last);
        if (miss && (!nearest || *miss < nearest->distance)) {
            nearest = WhyNot::NearestMiss{*miss, last.left, last.right, step.event, step.timeMs};
        }
    }
}

WhyNot Tally::whyNot(const TransitionPlace& place) const {
    WhyNot answer = countsOf(place);
    if (!answer.wasInState) {
        answer.upstream = upstreamOf(place);
    } else if (answer.tried == 0 && answer.earlierFired > 0) {
        answer.earlier = firedBefore(place);
    }
    return answer;
}

WhyNot Tally::countsOf(const TransitionPlace& place) const {
    const OfMachine& counts = machines[place.machine];
    const ConfigModel& config = document->configs[place.machine];
    const TransitionModel& transition = config.transitions[place.index];
    const OfTransition& own = counts.transitions[place.index];
    WhyNot answer{&transition, &config, place.machine};
    answer.tried = own.tried;
    answer.fired = own.fired;
    answer.stops = own.stops;
    answer.wasInState = counts.visited.contains(transition.from);
    for (const auto& [state, types] : counts.offered) {
        for (const auto& [type, number] : types) {
            answer.events += number;
            answer.otherTypes += type == transition.event ? 0 : number;
        }
        const std::uint64_t ofType = countOf(counts.offered, state, transition.event);
        if (state != transition.from && ofType > 0) {
            answer.otherStates[state] = ofType;
        }
    }
    // Of the events that a machine raises, only those in states that listen for them are steps.
    const std::uint64_t raised = countOf(counts.raised, transition.from, transition.event);
    answer.events += raised;
    answer.earlierFired = countOf(counts.offered, transition.from, transition.event) + raised - own.tried;
    return answer;
}

// It goes back from the state that the transition leaves, over states in which the machine never was, to those in which
// it was: from there, it was one step away from a way.
std::vector<WhyNot> Tally::upstreamOf(const TransitionPlace& place) const {
    const OfMachine& counts = machines[place.machine];
    const auto& transitions = document->configs[place.machine].transitions;
    std::vector<WhyNot> stuck;
    std::set<std::string_view> seen = {transitions[place.index].from};
    std::vector<std::string_view> next = {transitions[place.index].from};
    for (std::size_t i = 0; i < next.size(); ++i) {
        const auto leading = counts.leadingTo.find(next[i]);
        if (leading == counts.leadingTo.end()) {
            continue;
        }
        for (const std::size_t index : leading->second) {
            const std::string_view from = transitions[index].from;
            if (counts.visited.contains(from)) {
                stuck.push_back(countsOf({place.machine, index}));
                if (stuck.back().tried == 0 && stuck.back().earlierFired > 0) {
                    stuck.back().earlier = firedBefore({place.machine, index});
                }
            } else if (seen.insert(from).second) {
                next.push_back(from);
            }
        }
    }
    return stuck;
}

std::vector<const TransitionModel*> Tally::firedBefore(const TransitionPlace& place) const {
    const auto& transitions = document->configs[place.machine].transitions;
    const TransitionModel& asked = transitions[place.index];
    std::vector<const TransitionModel*> fired;
    for (std::size_t i = 0; i < place.index; ++i) {
        const TransitionModel& each = transitions[i];
        if (each.from == asked.from && each.event == asked.event && hasFired({place.machine, i})) {
            fired.push_back(&each);
        }
    }
    return fired;
}

}  // namespace Brenta::OS::VIG::Tool
