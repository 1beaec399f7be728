#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "os/Export.h"
#include "rulesengine/Action.h"
#include "rulesengine/EvaluationContext.h"
#include "rulesengine/EventType.h"
#include "rulesengine/Filter.h"
#include "rulesengine/State.h"

namespace Brenta::OS::RulesEngine {

class Event;

// A machine has named states and moves along transitions as events are delivered to it. Every machine has the
// states "start", where it begins, and "end"; reaching "end" does not stop it.
//
// A machine takes no lock: the client serialises all calls on one machine and all use of its context, while
// different machines may be driven from different threads. Filters and actions run synchronously on the
// calling thread. Delivering an event allocates nothing and never fails; an event that no transition accepts
// is dropped silently.
class VIG_EXPORT FiniteStateMachine {
  public:
    static const std::string STATE_START;  // "start"
    static const std::string STATE_END;    // "end"

    // One call of onEvent, start or enterState makes at most so many moves along EnteringState transitions.
    // A document can describe a cycle of such transitions that never ends; the machine then stays in the
    // state that it has reached after this many moves, and the next event goes on from there.
    static constexpr int MAX_ENTERING_STATE_MOVES = 1000;

    // Gives the machine a plain context, whose getters report nothing.
    FiniteStateMachine();

    // Takes ownership of `initialContext`. REQUIRES: it is not null (asserted in debug builds).
    explicit FiniteStateMachine(std::unique_ptr<EvaluationContext> initialContext);

    FiniteStateMachine(const FiniteStateMachine&) = delete;
    FiniteStateMachine& operator=(const FiniteStateMachine&) = delete;
    ~FiniteStateMachine();

    // Returns the state of that name, and creates it without transitions if there is none. Any name is accepted, the
    // empty one too; names are compared byte by byte. States are valid as long as the machine.
    State* getOrCreateStateByName(std::string_view name);

    // Returns the state of that name, or null.
    State* getStateByName(std::string_view name);

    // Appends a transition to the source state, creating the source and then the target state if they are
    // missing. Transitions are never compared: of two that could both fire, the one added first does.
    // REQUIRES: no filter and no action is null (asserted in debug builds).
    void addTransition(std::string_view from, std::string_view to, EventType eventType,
                       std::vector<std::shared_ptr<Filter>> filters, std::vector<std::shared_ptr<Action>> actions);

    // Gives the current state's EnteringState transitions their chance. Events may be delivered before, and
    // it may be called again.
    void start();

    // Gives the event to the current state. If a transition fires, its actions run, the machine moves, and
    // each state entered is given Event::ENTERING_STATE until no transition fires.
    // REQUIRES: an event that can match a Timeout transition is a TimeoutEvent.
    void onEvent(const Event& event);

    // Makes `state` current without running a transition, then goes on as on any entry into a state.
    // REQUIRES: `state` belongs to this machine (asserted in debug builds).
    void enterState(State* state);

    // The result is never null. While the actions of a transition run, this is still the state that it leaves.
    State* getCurrentState();

    // Returns the event types that the transitions of all states listen for.
    std::unordered_set<EventType> getAllListeningEventTypes();

    // Returns the context, which stays owned by the machine and is valid until it is replaced.
    EvaluationContext* getContext();

    // Takes ownership of `newContext` and destroys the previous one.
    // REQUIRES: it is not null (asserted in debug builds), and no filter or action of this machine is running.
    void setContext(std::unique_ptr<EvaluationContext> newContext);

  private:
    // Offers the event to the current state and, after each move, the event of entering to the state reached.
    void offer(const Event& event, int maxMoves);

    State* currentState;
    std::map<std::string, std::unique_ptr<State>, std::less<>> states;
    std::unique_ptr<EvaluationContext> context;
};

}  // namespace Brenta::OS::RulesEngine
