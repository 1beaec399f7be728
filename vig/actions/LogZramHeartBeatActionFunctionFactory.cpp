#include "vig/actions/LogZramHeartBeatActionFunctionFactory.h"

#include "vig/base/Log.h"

namespace Brenta::OS::VIG {

namespace {

void logZramHeartBeat(RulesEngine::EvaluationContext& /*context*/, const RulesEngine::Event& event) {
    const unsigned long long memUsedMaxBytes = event.getUint64Attr("memUsedMaxBytes").value_or(0);
    const unsigned long long numCompressedDataBytes = event.getUint64Attr("numCompressedDataBytes").value_or(0);
    VIG_LOG_INFO("Received VIG zram heart beat. memUsedMaxBytes: %llu, numCompressedDataBytes: %llu", memUsedMaxBytes,
                 numCompressedDataBytes);
}

}  // namespace

std::optional<VIGActionFunction> LogZramHeartBeatActionFunctionFactory::get(
    const std::vector<VIGActionParameter>& parameters) const {
    if (!parameters.empty()) {
        VIG_LOG_ERROR("LogZramHeartBeatActionFunctionFactory should not have any parameters.");
        return std::nullopt;
    }
    return logZramHeartBeat;
}

}  // namespace Brenta::OS::VIG
