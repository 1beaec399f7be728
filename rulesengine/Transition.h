#pragma once

#include <memory>
#include <vector>

#include "os/Export.h"
#include "rulesengine/Action.h"
#include "rulesengine/Event.h"
#include "rulesengine/EventType.h"
#include "rulesengine/Filter.h"

namespace Brenta::OS::RulesEngine {

class EvaluationContext;
class State;

// A transition leads from one state of a machine to another. The state that it leaves owns it, and it never changes.
class VIG_EXPORT Transition {
  public:
    // Both states stay owned by their machine and may be the same.
    // REQUIRES: no state, filter or action is null (asserted in debug builds).
    Transition(State* source, State* target, EventType listensFor, std::vector<std::shared_ptr<Filter>> conditions,
               std::vector<std::shared_ptr<Action>> effects);

    // Returns the type that it listens for.
    EventType getEventType() const;

    // Returns the state that it leads to, which is valid as long as the machine.
    const State& getTarget() const { return *to; }

    // Returns its conditions in the order in which they are asked, valid as long as the transition. A tool builds a
    // machine of the same ones to watch them at work.
    const std::vector<std::shared_ptr<Filter>>& getFilters() const { return filters; }

    // Returns what it does, in that order, valid as long as the transition.
    const std::vector<std::shared_ptr<Action>>& getActions() const { return actions; }

    // Tries to fire: asks the event whether it matches, then the filters in order up to the first that is
    // false. If all are true, runs every action in order and returns the target state; otherwise returns
    // null and nothing has happened. A Timeout transition that fires takes the event's `timeoutId` out of
    // the context after its actions.
    State* onEvent(EvaluationContext& context, const Event& event) const;

  private:
    friend class State;

    // Does what onEvent() does; it stands here so that a state tries its transitions without a call for each of them.
    State* tryToFire(EvaluationContext& context, const Event& event) const {
        if (!event.matches(eventType, context)) {
            return nullptr;
        }
        for (const auto& filter : filters) {
            if (!(*filter)(context, event)) {
                return nullptr;
            }
        }
        for (const auto& action : actions) {
            (*action)(context, event);
        }
        if (eventType == EventType::Timeout) {
            forgetTimeout(context, event);
        }
        return to;
    }

    static void forgetTimeout(EvaluationContext& context, const Event& event);

    [[maybe_unused]] State* const from;  // read by assertions only
    State* const to;
    const EventType eventType;
    const std::vector<std::shared_ptr<Filter>> filters;
    const std::vector<std::shared_ptr<Action>> actions;
};

}  // namespace Brenta::OS::RulesEngine
