#pragma once

#include <cstdint>

#include "os/Export.h"
#include "rulesengine/Event.h"

namespace Brenta::OS::RulesEngine {

// The event says that a timer ran out. Who arms the timer puts its identifier into the context's `timeoutIds`; the
// engine takes it out again when a transition consumes the event. Events that match a transition on EventType::Timeout
// must be of this class, since the engine reads `timeoutId` from them directly.
class VIG_EXPORT TimeoutEvent : public Event {
  public:
    // Any identifier is accepted, also one that is not armed.
    explicit TimeoutEvent(std::int64_t id) : Event(EventType::Timeout), timeoutId(id) {}

    // It tells which timer ran out: the number that was put into `timeoutIds`.
    const std::int64_t timeoutId;
};

}  // namespace Brenta::OS::RulesEngine
