#pragma once

#include <cstdint>
#include <optional>

#include "rulesengine/EventType.h"
#include "tools/vig/AttributeSet.h"

namespace tool {

// One event as it is recorded: a line of an event file.
struct EventRecord {
    Brenta::OS::RulesEngine::EventType type{};
    std::optional<std::int64_t> timeMs = {};     // since the recording began; for people, no rule sees it
    std::optional<std::int64_t> timeoutId = {};  // engaged exactly if the type is Timeout
    AttributeSet attributes = {};

    bool operator==(const EventRecord&) const = default;
};

}  // namespace tool
