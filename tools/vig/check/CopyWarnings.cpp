#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/vig/check/Warnings.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// A text may have any character in it.
std::string withLength(const std::string& text) {
    return std::to_string(text.size()) + ":" + text;
}

std::string termOf(const OperandModel& operand) {
    return std::to_string(static_cast<int>(operand.operand.type)) + withLength(operand.operand.value);
}

// Returns a text that is the same for machines that do the same whatever their states are called.
std::string meaningOf(const ConfigModel& config) {
    std::map<std::string_view, std::size_t> states = {{"start", 0}, {"end", 1}};
    const auto numberOf = [&](std::string_view name) { return states.emplace(name, states.size()).first->second; };
    std::string text;
    for (const TransitionModel& each : config.transitions) {
        const std::size_t from = numberOf(each.from);
        const std::size_t to = numberOf(each.to);
        const auto filter = [](const FilterModel& one) {
            return fmt::format("{} {} {} {}", static_cast<int>(one.valueType), termOf(one.operand1),
                               static_cast<int>(one.op), termOf(one.operand2));
        };
        const auto action = [](const ActionModel& one) { return withLength(one.key); };
        text += fmt::format("{} {} {} [{}] [{}]\n", from, to, static_cast<int>(each.event),
                            joined(each.filters, ",", filter), joined(each.actions, ",", action));
    }
    return text;
}

}  // namespace

void appendCopyWarnings(std::span<const ConfigModel> configs, std::vector<Finding>& found) {
    std::unordered_map<std::string, const ConfigModel*> known;
    for (const ConfigModel& config : configs) {
        if (config.transitions.empty()) {
            continue;
        }
        const auto [first, isNew] = known.emplace(meaningOf(config), &config);
        if (!isNew) {
            warn(found, "copied-configuration", placeOf(config, "id"),
                 "this machine does the same as that of " + first->second->place.path + ", whose id is " +
                     std::to_string(first->second->id),
                 "change what should differ, or leave one of them out");
        }
    }
}

void appendActionWarnings(const ConfigModel& config, std::vector<Finding>& found) {
    const auto acts = [](const TransitionModel& each) { return !each.actions.empty(); };
    if (!config.transitions.empty() && std::ranges::none_of(config.transitions, acts)) {
        warn(found, "no-action", placeOf(config, "id"),
             "no transition of this machine has an action, so that nothing comes of whatever happens",
             "give an action to the transition that should do something");
    }
}

}  // namespace Brenta::OS::VIG::Tool
