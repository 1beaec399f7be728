#include "rulesengine/Transition.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/TimeoutEvent.h"

namespace Brenta::OS::RulesEngine {

Transition::Transition(State* source, State* target, EventType listensFor,
                       std::vector<std::shared_ptr<Filter>> conditions, std::vector<std::shared_ptr<Action>> effects)
    : from(source), to(target), eventType(listensFor), filters(std::move(conditions)), actions(std::move(effects)) {
    assert(from != nullptr && to != nullptr);
    assert(std::find(filters.begin(), filters.end(), nullptr) == filters.end());
    assert(std::find(actions.begin(), actions.end(), nullptr) == actions.end());
}

EventType Transition::getEventType() const {
    return eventType;
}

State* Transition::onEvent(EvaluationContext& context, const Event& event) const {
    return tryToFire(context, event);
}

void Transition::forgetTimeout(EvaluationContext& context, const Event& event) {
    context.timeoutIds.erase(static_cast<const TimeoutEvent&>(event).timeoutId);
}

}  // namespace Brenta::OS::RulesEngine
