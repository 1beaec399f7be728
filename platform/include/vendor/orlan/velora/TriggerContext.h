#pragma once

#include <utils/String16.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace vendor::orlan::velora {

// This is what a caller of the trigger service tells about the collection that it asks for. The order of the fields is
// part of the interface.
struct TriggerContext {
    android::String16 triggerName;
    std::optional<android::String16> processName;
    std::int64_t reserved = 0;  // its meaning is the service's; always sent as zero
    std::optional<std::vector<std::optional<android::String16>>> metadata;
};

}  // namespace vendor::orlan::velora
