#pragma once

#include <utils/String16.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace vendor::orlan::velora {

struct TriggerContext {
    android::String16 triggerName;
    std::optional<android::String16> processName;
    std::int64_t reserved = 0;
    std::optional<std::vector<std::optional<android::String16>>> metadata;
};

}  // namespace vendor::orlan::velora
