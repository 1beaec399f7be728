#pragma once

#include <functional>

#include "vig/functions/PseudoRandomDoublePureFunctionImpl.h"

namespace Brenta::OS::VIG {

// Documents may compare with such a function under the value type "double".
struct DoubleFunction {
    const char* name;
    std::function<double()> (*get)();
    // All results lie in [least, limit).
    double least;
    double limit;
    // If true, each call draws anew, evenly over the range, from the generator of the process. Otherwise all calls for
    // one event give the same result.
    bool isRandom;
};

inline constexpr DoubleFunction kDoubleFunctions[] = {
    {"PseudoRandomDouble", PseudoRandomDoublePureFunctionImpl::get, 0, 1, true},
};

}  // namespace Brenta::OS::VIG
