#pragma once

#include <cstdint>
#include <memory>

#include "os/Export.h"
#include "vig/parsers/VIGConfigPayload.h"

namespace Brenta::OS::VIG {

// This is one configuration of a rule document. It owns its payload, and so the machine; it may be used on any
// thread, one at a time.
class VIG_EXPORT VIGConfig {
  public:
    VIGConfig(std::int64_t id, std::unique_ptr<VIGConfigPayload> payload);
    VIGConfig(const VIGConfig&) = delete;
    VIGConfig& operator=(const VIGConfig&) = delete;

    // It is as the document gives it; ids need not be unique.
    std::int64_t getConfigId() const;

    // The payload stays owned by the configuration.
    VIGConfigPayload* getConfigPayload() const;

  private:
    const std::int64_t configId;
    const std::unique_ptr<VIGConfigPayload> configPayload;
};

}  // namespace Brenta::OS::VIG
