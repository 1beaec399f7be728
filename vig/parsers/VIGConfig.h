#pragma once

#include <cstdint>
#include <memory>

#include "os/Export.h"
#include "vig/parsers/VIGConfigPayload.h"

namespace Brenta::OS::VIG {

// One configuration of a rule document. It owns its payload, and so the machine; it may be used on any
// thread, one at a time.
class VIG_EXPORT VIGConfig {
  public:
    VIGConfig(std::int64_t id, std::unique_ptr<VIGConfigPayload> payload);
    VIGConfig(const VIGConfig&) = delete;
    VIGConfig& operator=(const VIGConfig&) = delete;

    // As the document gives it; ids need not be unique.
    std::int64_t getConfigId() const;

    // Owned by the configuration.
    VIGConfigPayload* getConfigPayload() const;

  private:
    const std::int64_t configId;
    const std::unique_ptr<VIGConfigPayload> configPayload;
};

}  // namespace Brenta::OS::VIG
