#pragma once

#include <functional>

#include "os/Export.h"
#include "rulesengine/Filter.h"

namespace Brenta::OS::RulesEngine {

// Makes a filter of any callable.
class VIG_EXPORT FuncFilter : public Filter {
  public:
    // REQUIRES: `callable` is not empty (asserted in debug builds).
    explicit FuncFilter(std::function<bool(const EvaluationContext&, const Event&)> callable);

    // Returns what the callable returns.
    bool operator()(const EvaluationContext& context, const Event& event) const override;

  private:
    std::function<bool(const EvaluationContext&, const Event&)> function;
};

}  // namespace Brenta::OS::RulesEngine
