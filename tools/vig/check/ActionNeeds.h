#pragma once

#include <string_view>

#include "tools/vig/check/Catalogue.h"

namespace Brenta::OS::VIG::Tool {

// What the library's actions read from the event, and never from the context. This is the one place that says so.
struct ActionNeed {
    std::string_view action;
    std::string_view attribute;
    AttributeKind kind;
};

inline constexpr ActionNeed kActionNeeds[] = {
    {"TriggerVelora", "processName", AttributeKind::String},
    {"TriggerVelora", "vmRssKB", AttributeKind::Int64},
    {"TriggerVelora", "vmSwapKB", AttributeKind::Int64},
    {"TriggerVeloraCpu", "processName", AttributeKind::String},
    {"TriggerVeloraCpu", "cpuAvgUtilization", AttributeKind::Double},
    {"LogZramHeartBeat", "memUsedMaxBytes", AttributeKind::Uint64},
    {"LogZramHeartBeat", "numCompressedDataBytes", AttributeKind::Uint64},
};

// Whether the action asks the trigger service for a collection.
inline bool startsCollection(std::string_view action) {
    return action == "TriggerVelora" || action == "TriggerVeloraCpu";
}

}  // namespace Brenta::OS::VIG::Tool
