#include "tools/vig/findings/Findings.h"

#include <json/value.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <tuple>

namespace Brenta::OS::VIG::Tool {

namespace {

// Takes "[7]" from the path behind the name, and returns the element of the list; null if there is none.
const Json::Value* takeElement(std::string_view& path, std::string_view name, const Json::Value& list) {
    Json::ArrayIndex index = 0;
    if (!path.starts_with(name) || !list.isArray()) {
        return nullptr;
    }
    const auto [end, error] = std::from_chars(path.data() + name.size(), path.data() + path.size(), index);
    path.remove_prefix(static_cast<std::size_t>(end - path.data()));
    return error == std::errc() && path.starts_with(']') && index < list.size() ? &list[index] : nullptr;
}

const Json::Value& memberOrNull(const Json::Value& object, const char* key) {
    return object.isObject() ? object[key] : Json::Value::nullSingleton();
}

std::optional<TransitionName> nameTransition(std::string_view path, const DocumentText& document) {
    const Json::Value* const config = takeElement(path, "configs[", memberOrNull(document.root(), "configs"));
    const Json::Value* const transition =
        config == nullptr
            ? nullptr
            : takeElement(path, "].payload.data.transitions[",
                          memberOrNull(memberOrNull(memberOrNull(*config, "payload"), "data"), "transitions"));
    if (transition == nullptr) {
        return std::nullopt;
    }
    const Json::Value& from = memberOrNull(*transition, "from_state");
    const Json::Value& to = memberOrNull(*transition, "to_state");
    if (!from.isString() && !to.isString()) {
        return std::nullopt;
    }
    const auto nameIn = [](const Json::Value& state) { return state.isString() ? state.asString() : "?"; };
    const Json::Value& named = from.isString() ? from : to;
    return TransitionName{nameIn(from), nameIn(to),
                          document.source().positionOf(document.placeOf(named, {}).begin).line};
}

}  // namespace

void settle(std::vector<Finding>& found, const DocumentText& document) {
    std::ranges::stable_sort(found, {},
                             [](const Finding& each) { return std::tuple(each.place.begin, each.place.end); });
    for (Finding& each : found) {
        each.transition = nameTransition(each.place.path, document);
    }
}

}  // namespace Brenta::OS::VIG::Tool
