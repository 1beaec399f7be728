#include "rulesengine/FuncFilter.h"

#include <cassert>
#include <utility>

namespace Brenta::OS::RulesEngine {

FuncFilter::FuncFilter(std::function<bool(const EvaluationContext&, const Event&)> callable)
    : function(std::move(callable)) {
    assert(function);
}

bool FuncFilter::operator()(const EvaluationContext& context, const Event& event) const {
    return function(context, event);
}

}  // namespace Brenta::OS::RulesEngine
