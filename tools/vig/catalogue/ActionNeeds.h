#pragma once

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

#include "tools/vig/catalogue/Catalogue.h"

namespace Brenta::OS::VIG::Tool {

// An action reads such an attribute from the event, and never from the context.
struct ActionNeed {
    std::string_view attribute;
    AttributeKind kind;
};

struct KnownAction {
    std::string_view name;
    bool startsCollection;  // asks the trigger service for one
    std::span<const ActionNeed> needs;
};

inline constexpr ActionNeed kZramNeeds[] = {{"memUsedMaxBytes", AttributeKind::Uint64},
                                            {"numCompressedDataBytes", AttributeKind::Uint64}};
inline constexpr ActionNeed kMemoryNeeds[] = {
    {"processName", AttributeKind::String}, {"vmRssKB", AttributeKind::Int64}, {"vmSwapKB", AttributeKind::Int64}};
inline constexpr ActionNeed kCpuNeeds[] = {{"processName", AttributeKind::String},
                                           {"cpuAvgUtilization", AttributeKind::Double}};

// Documents ask for the library's actions under these names.
inline constexpr KnownAction kActions[] = {
    {"Test", false, {}},
    {"LogZramHeartBeat", false, kZramNeeds},
    {"TriggerVelora", true, kMemoryNeeds},
    {"TriggerVeloraCpu", true, kCpuNeeds},
};

// Returns the action with the lookup key, or null if the library has none.
inline const KnownAction* findAction(std::string_view key) {
    const auto* const found = std::ranges::find(kActions, key, &KnownAction::name);
    return found == std::end(kActions) ? nullptr : found;
}

inline bool startsCollection(std::string_view key) {
    const KnownAction* const action = findAction(key);
    return action != nullptr && action->startsCollection;
}

}  // namespace Brenta::OS::VIG::Tool
