#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "os/Export.h"
#include "rulesengine/Action.h"
#include "rulesengine/EventType.h"
#include "rulesengine/Filter.h"
#include "rulesengine/Transition.h"

namespace Brenta::OS::RulesEngine {

class FiniteStateMachine;

// A state belongs to its machine, and owns the transitions that leave it.
class VIG_EXPORT State {
  public:
    static const std::string START_STATE;  // the name "start" of a state that every machine has
    static const std::string END_STATE;    // the name "end" of the other one

    // `owner` must outlive the state.
    State(std::string stateName, FiniteStateMachine& owner);
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State();

    // Appends a transition from this state to `to`, a state of the same machine. Transitions are tried in
    // the order in which they were added.
    // REQUIRES: `to`, the filters and the actions are not null (asserted in debug builds).
    void addTransition(State* to, EventType eventType, std::vector<std::shared_ptr<Filter>> filters,
                       std::vector<std::shared_ptr<Action>> actions);

    // Gives the event to the transitions, with the machine's context. Returns the target of the first that fires, null
    // if none does.
    State* onEvent(const Event& event);

    // Adds the event type of each transition to `eventTypes`.
    void getListeningEventTypes(std::unordered_set<EventType>& eventTypes) const;

    // Returns the name, valid as long as the state.
    std::string_view getName() const;

    // Returns them in the order in which they are tried. The list is valid until one is added.
    const std::vector<std::unique_ptr<Transition>>& getTransitions() const { return transitions; }

  private:
    friend class FiniteStateMachine;

    // Does what onEvent() does; it stands here so that a machine offers an event without a call.
    State* offer(EvaluationContext& context, const Event& event) const {
        for (const auto& transition : transitions) {
            if (State* const next = transition->tryToFire(context, event)) {
                return next;
            }
        }
        return nullptr;
    }

    // Offers the event of entering. It is the library's own, so what it matches is known without a virtual call.
    State* enter(EvaluationContext& context) const {
        for (const auto& transition : transitions) {
            if (transition->eventType == EventType::EnteringState) {
                if (State* const next = transition->onEvent(context, Event::ENTERING_STATE)) {
                    return next;
                }
            }
        }
        return nullptr;
    }

    const std::string name;
    FiniteStateMachine& machine;
    std::vector<std::unique_ptr<Transition>> transitions;
};

}  // namespace Brenta::OS::RulesEngine
