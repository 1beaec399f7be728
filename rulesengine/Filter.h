#pragma once

#include "os/Export.h"

namespace Brenta::OS::RulesEngine {

class EvaluationContext;
class Event;

// A filter is a condition of a transition. Transitions share filters, which must not change once they are in use; they
// are evaluated on the thread that drives the machine.
class VIG_EXPORT Filter {
  public:
    Filter() = default;
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    virtual ~Filter() = default;

    // Returns whether the transition may fire on `event`.
    virtual bool operator()(const EvaluationContext& context, const Event& event) const = 0;
};

}  // namespace Brenta::OS::RulesEngine
