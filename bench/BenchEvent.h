#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "rulesengine/Event.h"

namespace bench {

using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;

// It is an event as a service writes it: a getter of each kind, which compares names.
class MemoryEvent final : public Event {
  public:
    explicit MemoryEvent(EventType eventType = EventType::ProcessMemoryHeartBeat) : Event(eventType) {}

    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override;
    std::optional<double> getDoubleAttr(std::string_view key) const override;
    std::string_view getStringAttr(std::string_view key) const override;
};

}  // namespace bench
