#pragma once

#include <cstdint>
#include <optional>

#include "rulesengine/EventType.h"
#include "tools/vig/events/AttributeSet.h"

namespace Brenta::OS::VIG::Tool {

// One event as it is recorded: a line of an event file.
struct EventRecord {
    RulesEngine::EventType type{};
    std::optional<std::int64_t> timeMs = {};     // since the recording began; for people, no rule sees it
    std::optional<std::int64_t> timeoutId = {};  // engaged exactly if the type is Timeout
    AttributeSet attributes = {};

    bool operator==(const EventRecord&) const = default;
};

}  // namespace Brenta::OS::VIG::Tool
