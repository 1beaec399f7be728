#include "vig/actions/TestActionFunctionFactory.h"

#include "vig/base/Log.h"

namespace Brenta::OS::VIG {

std::optional<VIGActionFunction> TestActionFunctionFactory::get(
    const std::vector<VIGActionParameter>& parameters) const {
    if (!parameters.empty()) {
        VIG_LOG_ERROR("Test Action should not have any parameters.");
        return std::nullopt;
    }
    return [](RulesEngine::EvaluationContext&, const RulesEngine::Event&) {};
}

}  // namespace Brenta::OS::VIG
