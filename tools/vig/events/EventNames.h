#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "rulesengine/Event.h"
#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

// The event types have these names, in the order of the library's table.
inline constexpr auto kEventNames = kEventTypeNames.texts();

inline std::string_view nameOf(RulesEngine::EventType type) {
    return kEventTypeNames.lookup(type);
}

using AttributeKind = RulesEngine::Event::ValueType;

// The kinds as event records and catalogues name them, by their value.
inline constexpr auto kKindNames = std::to_array<std::string_view>({"uint64", "int64", "double", "bool", "string"});

inline std::string_view nameOf(AttributeKind kind) {
    return kKindNames[static_cast<std::size_t>(kind)];
}

}  // namespace Brenta::OS::VIG::Tool
