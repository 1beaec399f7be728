#pragma once

#include <functional>

#include "os/Export.h"

namespace Brenta::OS::VIG {

// The function "PseudoRandomDouble" draws from the one generator of the process.
class VIG_EXPORT PseudoRandomDoublePureFunctionImpl {
  public:
    // Returns a function that gives the next number, evenly distributed over [0, 1), on every call. It may be
    // called from any thread and never fails. All functions obtained here draw from one common sequence,
    // which starts anywhere.
    static std::function<double()> get();
};

}  // namespace Brenta::OS::VIG
