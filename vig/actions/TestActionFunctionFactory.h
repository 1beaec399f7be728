#pragma once

#include "vig/actions/VIGActionFunctionFactory.h"

namespace Brenta::OS::VIG {

// The action "Test" has no effect; documents try out their transitions with it. It takes no parameters.
class VIG_EXPORT TestActionFunctionFactory : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override;
};

}  // namespace Brenta::OS::VIG
