#include "rulesengine/FiniteStateMachine.h"

#include <cassert>
#include <utility>

#include "rulesengine/Event.h"

namespace Brenta::OS::RulesEngine {

const std::string FiniteStateMachine::STATE_START = "start";
const std::string FiniteStateMachine::STATE_END = "end";

FiniteStateMachine::FiniteStateMachine() : FiniteStateMachine(std::make_unique<EvaluationContext>()) {}

FiniteStateMachine::FiniteStateMachine(std::unique_ptr<EvaluationContext> initialContext)
    : currentState(nullptr), context(std::move(initialContext)) {
    assert(context);
    State* const startState = getOrCreateStateByName(State::START_STATE);
    getOrCreateStateByName(State::END_STATE);
    currentState = startState;
}

FiniteStateMachine::~FiniteStateMachine() = default;

State* FiniteStateMachine::getOrCreateStateByName(std::string_view name) {
    const auto place = states.lower_bound(name);
    if (place != states.end() && place->first == name) {
        return place->second.get();
    }
    return states.emplace_hint(place, name, std::make_unique<State>(std::string(name), *this))->second.get();
}

State* FiniteStateMachine::getStateByName(std::string_view name) {
    const auto found = states.find(name);
    return found == states.end() ? nullptr : found->second.get();
}

void FiniteStateMachine::addTransition(std::string_view from, std::string_view to, EventType eventType,
                                       std::vector<std::shared_ptr<Filter>> filters,
                                       std::vector<std::shared_ptr<Action>> actions) {
    State* const source = getOrCreateStateByName(from);
    State* const target = getOrCreateStateByName(to);
    source->addTransition(target, eventType, std::move(filters), std::move(actions));
}

void FiniteStateMachine::start() {
    offer(Event::ENTERING_STATE, MAX_ENTERING_STATE_MOVES);
}

void FiniteStateMachine::onEvent(const Event& event) {
    offer(event, 1 + MAX_ENTERING_STATE_MOVES);
}

void FiniteStateMachine::offer(const Event& event, int maxMoves) {
    assert(maxMoves > 0);
    EvaluationContext& current = *context;  // no action replaces it
    // The bound keeps a cycle of EnteringState transitions from hanging the thread that delivers events.
    for (State* next = currentState->offer(current, event); next != nullptr; next = next->enter(current)) {
        currentState = next;
        if (--maxMoves == 0) {
            return;
        }
    }
}

void FiniteStateMachine::enterState(State* state) {
    assert(state != nullptr && getStateByName(state->getName()) == state);
    currentState = state;
    start();
}

State* FiniteStateMachine::getCurrentState() {
    return currentState;
}

std::unordered_set<EventType> FiniteStateMachine::getAllListeningEventTypes() {
    std::unordered_set<EventType> eventTypes;
    for (const auto& [name, state] : states) {
        state->getListeningEventTypes(eventTypes);
    }
    return eventTypes;
}

EvaluationContext* FiniteStateMachine::getContext() {
    return context.get();
}

void FiniteStateMachine::setContext(std::unique_ptr<EvaluationContext> newContext) {
    assert(newContext);
    context = std::move(newContext);
}

}  // namespace Brenta::OS::RulesEngine
