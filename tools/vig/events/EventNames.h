#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "vig/EventTypeNames.h"

namespace Brenta::OS::VIG::Tool {

// The names of the event types, in the order of the library's table.
inline constexpr auto kEventNames = [] {
    const auto& pairs = kEventTypeNames.pairs;
    std::array<std::string_view, pairs.size()> names;
    std::transform(pairs.begin(), pairs.end(), names.begin(),
                   [](const auto& pair) { return std::string_view(pair.second); });
    return names;
}();

// REQUIRES: the type is one of the enumerators.
inline std::string_view nameOf(RulesEngine::EventType type) {
    const auto& pairs = kEventTypeNames.pairs;
    return std::ranges::find(pairs, type, [](const auto& pair) { return pair.first; })->second;
}

}  // namespace Brenta::OS::VIG::Tool
