#pragma once

#include "vig/actions/VIGActionFunctionFactory.h"

namespace Brenta::OS::VIG {

// The action "LogZramHeartBeat" logs the figures of a zram heartbeat at info priority. It reads the Uint64 attributes
// "memUsedMaxBytes" and "numCompressedDataBytes" of the event; one that is absent counts as 0. It takes no parameters.
class VIG_EXPORT LogZramHeartBeatActionFunctionFactory : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override;
};

}  // namespace Brenta::OS::VIG
