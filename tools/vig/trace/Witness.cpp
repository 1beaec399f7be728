#include "tools/vig/trace/Witness.h"

#include <algorithm>

namespace Brenta::OS::VIG::Tool {

bool Witness::fires(std::size_t transition, std::uint64_t event) const {
    return std::ranges::any_of(
        trials, [&](const Trial& each) { return each.fired && each.transition == transition && each.event == event; });
}

bool Witness::firesAtTheEnd(std::size_t transition) const {
    return fires(transition, events.size());
}

}  // namespace Brenta::OS::VIG::Tool
