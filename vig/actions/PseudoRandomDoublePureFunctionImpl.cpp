#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"

#include "vig/actions/PseudoRandomGenerator.h"

namespace Brenta::OS::VIG {

std::function<double()> PseudoRandomDoublePureFunctionImpl::get() {
    return [] { return PseudoRandomGenerator::ofProcess().draw(); };
}

}  // namespace Brenta::OS::VIG
