#pragma once

#include <optional>
#include <vector>

#include "os/Export.h"
#include "vig/actions/VIGActionFunction.h"

namespace Brenta::OS::VIG {

// Builds the action that stands behind a name in rule documents. Registries share factories; `get` may be
// called from several threads at once.
class VIG_EXPORT VIGActionFunctionFactory {
  public:
    virtual ~VIGActionFunctionFactory() = default;

    // Returns a new, independent action for these parameters, in document order; nothing if the factory does not
    // accept them; the reason is logged.
    virtual std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const = 0;
};

}  // namespace Brenta::OS::VIG
