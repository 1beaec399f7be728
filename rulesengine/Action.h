#pragma once

#include "os/Export.h"

namespace Brenta::OS::RulesEngine {

class EvaluationContext;
class Event;

// An action is what a transition does when it fires. Transitions share actions; they run synchronously on the thread
// that drives the machine.
class VIG_EXPORT Action {
  public:
    Action() = default;
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;

    virtual ~Action() = default;

    // Runs the action. This is the only place where a rule may change `context`.
    virtual void operator()(EvaluationContext& context, const Event& event) const = 0;
};

}  // namespace Brenta::OS::RulesEngine
