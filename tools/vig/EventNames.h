#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "vig/EventTypeNames.h"

namespace tool {

// The names of the event types, in the order of the library's table.
inline constexpr auto kEventNames = [] {
    const auto& pairs = Brenta::OS::VIG::kEventTypeNames.pairs;
    std::array<std::string_view, pairs.size()> names;
    std::transform(pairs.begin(), pairs.end(), names.begin(),
                   [](const auto& pair) { return std::string_view(pair.second); });
    return names;
}();

// REQUIRES: the type is one of the enumerators.
inline std::string_view nameOf(Brenta::OS::RulesEngine::EventType type) {
    const auto& pairs = Brenta::OS::VIG::kEventTypeNames.pairs;
    return std::ranges::find(pairs, type, [](const auto& pair) { return pair.first; })->second;
}

}  // namespace tool
