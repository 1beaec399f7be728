#include "rulesengine/State.h"

#include <utility>

#include "rulesengine/FiniteStateMachine.h"

namespace Brenta::OS::RulesEngine {

const std::string State::START_STATE = "start";
const std::string State::END_STATE = "end";

State::State(std::string stateName, FiniteStateMachine& owner) : name(std::move(stateName)), machine(owner) {}

State::~State() = default;

void State::addTransition(State* to, EventType eventType, std::vector<std::shared_ptr<Filter>> filters,
                          std::vector<std::shared_ptr<Action>> actions) {
    transitions.push_back(std::make_unique<Transition>(this, to, eventType, std::move(filters), std::move(actions)));
}

State* State::onEvent(const Event& event) {
    return offer(*machine.getContext(), event);
}

void State::getListeningEventTypes(std::unordered_set<EventType>& eventTypes) const {
    for (const auto& transition : transitions) {
        eventTypes.insert(transition->getEventType());
    }
}

std::string_view State::getName() const {
    return name;
}

}  // namespace Brenta::OS::RulesEngine
