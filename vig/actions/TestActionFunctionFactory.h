#pragma once

#include "vig/actions/VIGActionFunctionFactory.h"

namespace Brenta::OS::VIG {

// "Test": an action without effect, for documents that try out their transitions. Takes no parameters.
class VIG_EXPORT TestActionFunctionFactory : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override;
};

}  // namespace Brenta::OS::VIG
