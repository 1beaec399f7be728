#include "vig/parsers/VIGConfigPayload.h"

#include <utility>

namespace Brenta::OS::VIG {

VIGConfigPayload::VIGConfigPayload(std::int64_t id, std::unique_ptr<RulesEngine::FiniteStateMachine> fsm)
    : configPayloadId(id), finiteStateMachine(std::move(fsm)) {}

std::int64_t VIGConfigPayload::getConfigPayloadId() const {
    return configPayloadId;
}

RulesEngine::FiniteStateMachine* VIGConfigPayload::getFiniteStateMachine() const {
    return finiteStateMachine.get();
}

}  // namespace Brenta::OS::VIG
