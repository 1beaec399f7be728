#include "vig/parsers/VIGConfig.h"

#include <utility>

namespace Brenta::OS::VIG {

VIGConfig::VIGConfig(std::int64_t id, std::unique_ptr<VIGConfigPayload> payload)
    : configId(id), configPayload(std::move(payload)) {}

std::int64_t VIGConfig::getConfigId() const {
    return configId;
}

VIGConfigPayload* VIGConfig::getConfigPayload() const {
    return configPayload.get();
}

}  // namespace Brenta::OS::VIG
