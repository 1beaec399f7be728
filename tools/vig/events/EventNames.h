#pragma once

#include <string_view>

#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

// The event types have these names, in the order of the library's table.
inline constexpr auto kEventNames = kEventTypeNames.texts();

inline std::string_view nameOf(RulesEngine::EventType type) {
    return kEventTypeNames.lookup(type);
}

}  // namespace Brenta::OS::VIG::Tool
