#pragma once

#include <json/value.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/check/Diagnostic.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// `name` is one of kWarningNames.
inline void warn(std::vector<Diagnostic>& found, std::string_view name, Place place, std::string message,
                 std::string hint) {
    found.push_back({Severity::Warning, std::string(name), std::move(place), std::move(message), std::move(hint)});
}

// What suggestion() gives, standing alone.
inline std::string asHint(const std::string& suggested) {
    return suggested.empty() ? suggested : suggested.substr(suggested.find_first_not_of("; "));
}

// The place of a member of a transition or a filter, such as "to_state".
Place placeOf(const auto& object, const char* member) {
    const Json::Value& whole = *object.json;
    const Json::Value& value = whole[member];
    const auto offsetOf = [&](std::ptrdiff_t place) {
        return object.place.begin + static_cast<std::size_t>(place - whole.getOffsetStart());
    };
    return {offsetOf(value.getOffsetStart()), offsetOf(value.getOffsetLimit()), object.place.path + "." + member};
}

}  // namespace Brenta::OS::VIG::Tool
