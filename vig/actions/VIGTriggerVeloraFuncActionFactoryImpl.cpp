#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"

#include <fmt/format.h>

#include <cstdint>

#include "vig/actions/TriggerRequest.h"
#include "vig/base/Log.h"

namespace Brenta::OS::VIG {

namespace {

// Wraps around instead of overflowing, since an event may hold any value.
std::int64_t sum(std::int64_t left, std::int64_t right) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
}

}  // namespace

std::optional<VIGActionFunction> VIGTriggerVeloraFuncActionFactoryImpl::get(
    const std::vector<VIGActionParameter>& parameters) const {
    if (!parameters.empty()) {
        VIG_LOG_ERROR("VIGTriggerVeloraFuncActionFactoryImpl should not have any parameters.");
        return std::nullopt;
    }
    return [](RulesEngine::EvaluationContext&, const RulesEngine::Event& event) {
        requestTrigger("vig:memory_heartbeat_over_budget:", synthesizeMetadata, event);
    };
}

TriggerMetadata VIGTriggerVeloraFuncActionFactoryImpl::synthesizeMetadata(const RulesEngine::Event& event) {
    const std::optional<std::int64_t> vmRssKB = event.getInt64Attr("vmRssKB");
    const std::optional<std::int64_t> vmSwapKB = event.getInt64Attr("vmSwapKB");
    if (!vmRssKB) {
        VIG_LOG_ERROR("Missing required attributes vmRssKB in event.");
        return {};
    }
    if (!vmSwapKB) {
        VIG_LOG_ERROR("Missing required attributes vmSwapKB in event.");
        return {};
    }
    TriggerMetadata metadata;
    appendEntry(metadata, fmt::format("threshold_current_value:{}", sum(*vmRssKB, *vmSwapKB)));
    appendEntry(metadata, "threshold_units:RSS_anon_plus_swap_KB");
    appendAttributes(metadata, event);
    return metadata;
}

}  // namespace Brenta::OS::VIG
