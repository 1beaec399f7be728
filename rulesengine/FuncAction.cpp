#include "rulesengine/FuncAction.h"

#include <cassert>
#include <utility>

namespace Brenta::OS::RulesEngine {

FuncAction::FuncAction(std::function<void(EvaluationContext&, const Event&)> callable) : function(std::move(callable)) {
    assert(function);
}

void FuncAction::operator()(EvaluationContext& context, const Event& event) const {
    function(context, event);
}

}  // namespace Brenta::OS::RulesEngine
