#pragma once

#include "os/Export.h"
#include "rulesengine/Event.h"

namespace Brenta::OS::RulesEngine {

// The event that a machine gives to every state that it enters; see Event::ENTERING_STATE. It has no
// attributes, so filters on entering a state see those of the machine's context alone.
class VIG_EXPORT EnteringStateEvent : public Event {
  public:
    constexpr EnteringStateEvent() : Event(EventType::EnteringState) {}
    constexpr ~EnteringStateEvent() override {}
};

}  // namespace Brenta::OS::RulesEngine
