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
    // Takes ownership of the payload, and gives out null if it is given null.
    VIGConfig(std::int64_t id, std::unique_ptr<VIGConfigPayload> payload);
    VIGConfig(const VIGConfig&) = delete;
    VIGConfig& operator=(const VIGConfig&) = delete;

    // Returns the id as the document gives it; ids need not be unique. It is for the service, the library does nothing
    // with it.
    std::int64_t getConfigId() const;

    // Returns the payload, which stays owned by the configuration. It is never null in what a document gave.
    VIGConfigPayload* getConfigPayload() const;

  private:
    const std::int64_t configId;
    const std::unique_ptr<VIGConfigPayload> configPayload;
};

}  // namespace Brenta::OS::VIG
