#pragma once

#include <utils/String16.h>

#include "vig/actions/VIGActionFunctionFactory.h"

namespace Brenta::OS::VIG {

// The action "TriggerVeloraCpu" asks the trigger service for a collection because a process is over its CPU budget.
// It reads the event's "processName" (String) and "cpuAvgUtilization" (Double). It takes no parameters. The action
// blocks its thread for the lookup of the service and the call. In the event's texts, a NUL and what is not valid UTF-8
// are sent as U+FFFD.
class VIG_EXPORT VIGTriggerVeloraCpuFuncActionFactoryImpl : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override;

    // Returns the measured value, its unit, and every attribute of the event; nothing, with a line in the log, if the
    // event lacks the measured value.
    static std::vector<std::optional<android::String16>> synthesizeMetadata(const RulesEngine::Event& event);
};

}  // namespace Brenta::OS::VIG
