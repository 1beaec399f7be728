#include "vig/functions/PseudoRandomDoublePureFunctionImpl.h"

#include "vig/functions/PseudoRandomGenerator.h"

namespace Brenta::OS::VIG {

std::function<double()> PseudoRandomDoublePureFunctionImpl::get() {
    return [] { return PseudoRandomGenerator::ofProcess().draw(); };
}

}  // namespace Brenta::OS::VIG
