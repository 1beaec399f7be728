#include "tools/vig/run/Draws.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "vig/functions/PseudoRandomGenerator.h"

namespace Brenta::OS::VIG::Tool {

std::function<double()> Draws::source() const {
    if (numbers.empty()) {
        return [generator = std::make_shared<PseudoRandomGenerator>(seed)] { return generator->draw(); };
    }
    const auto next = std::make_shared<std::size_t>(0);
    return [all = numbers, next] { return all[std::min((*next)++, all.size() - 1)]; };
}

}  // namespace Brenta::OS::VIG::Tool
