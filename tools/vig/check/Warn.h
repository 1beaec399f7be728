#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/RuleModel.h"
#include "tools/vig/check/Diagnostic.h"

namespace tool {

// `name` is one of kWarningNames.
inline void warn(std::vector<Diagnostic>& found, std::string_view name, Place place, std::string message,
                 std::string hint) {
    found.push_back({Severity::Warning, std::string(name), std::move(place), std::move(message), std::move(hint)});
}

// What suggestion() gives, standing alone.
inline std::string asHint(const std::string& suggested) {
    return suggested.empty() ? suggested : suggested.substr(suggested.find_first_not_of("; "));
}

// The place of a member of a transition, such as "to_state".
Place placeOf(const TransitionModel& transition, const char* member);

}  // namespace tool
