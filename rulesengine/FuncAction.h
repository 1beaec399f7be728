#pragma once

#include <functional>

#include "os/Export.h"
#include "rulesengine/Action.h"

namespace Brenta::OS::RulesEngine {

// Makes an action of any callable.
class VIG_EXPORT FuncAction : public Action {
  public:
    // REQUIRES: `callable` is not empty (asserted in debug builds).
    explicit FuncAction(std::function<void(EvaluationContext&, const Event&)> callable);

    void operator()(EvaluationContext& context, const Event& event) const override;

  private:
    std::function<void(EvaluationContext&, const Event&)> function;
};

}  // namespace Brenta::OS::RulesEngine
