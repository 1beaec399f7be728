#include "vig/actions/VIGTriggerVeloraCpuFuncActionFactoryImpl.h"

#include <fmt/format.h>

#include "vig/actions/TriggerRequest.h"
#include "vig/base/Log.h"

namespace Brenta::OS::VIG {

std::optional<VIGActionFunction> VIGTriggerVeloraCpuFuncActionFactoryImpl::get(
    const std::vector<VIGActionParameter>& parameters) const {
    if (!parameters.empty()) {
        VIG_LOG_ERROR("VIGTriggerVeloraCpuFuncActionFactoryImpl should not have any parameters.");
        return std::nullopt;
    }
    return [](RulesEngine::EvaluationContext&, const RulesEngine::Event& event) {
        requestTrigger("vig:cpu_over_budget:", synthesizeMetadata, event);
    };
}

TriggerMetadata VIGTriggerVeloraCpuFuncActionFactoryImpl::synthesizeMetadata(const RulesEngine::Event& event) {
    const std::optional<double> cpuAvgUtilization = event.getDoubleAttr("cpuAvgUtilization");
    if (!cpuAvgUtilization) {
        VIG_LOG_ERROR("Missing required attribute cpuAvgUtilization in event.");
        return {};
    }
    TriggerMetadata metadata;
    appendEntry(metadata, fmt::format("threshold_current_value:{}", *cpuAvgUtilization));
    appendEntry(metadata, "threshold_units:CPU_credits");
    appendAttributes(metadata, event);
    return metadata;
}

}  // namespace Brenta::OS::VIG
