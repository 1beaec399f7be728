#pragma once

#include <cstdint>
#include <memory>

#include "os/Export.h"
#include "rulesengine/FiniteStateMachine.h"

namespace Brenta::OS::VIG {

// The payload of a configuration owns the state machine, which the client starts and feeds.
class VIG_EXPORT VIGConfigPayload {
  public:
    // Takes ownership of the machine, and gives out null if it is given null.
    VIGConfigPayload(std::int64_t id, std::unique_ptr<RulesEngine::FiniteStateMachine> fsm);
    VIGConfigPayload(const VIGConfigPayload&) = delete;
    VIGConfigPayload& operator=(const VIGConfigPayload&) = delete;

    // Returns the id of the payload, which is within 32 bits when it comes from a document, and for the service as
    // well.
    std::int64_t getConfigPayloadId() const;

    // Returns the machine, which stays owned by the payload. A document's is never null, in its start state and not
    // started.
    RulesEngine::FiniteStateMachine* getFiniteStateMachine() const;

  private:
    const std::int64_t configPayloadId;
    const std::unique_ptr<RulesEngine::FiniteStateMachine> finiteStateMachine;
};

}  // namespace Brenta::OS::VIG
