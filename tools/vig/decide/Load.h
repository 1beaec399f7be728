#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "tools/vig/decide/Behaviour.h"

namespace Brenta::OS::VIG::Tool {

// It is so many collections in so many events, in lowest terms.
struct Rate {
    std::uint64_t triggers;
    std::uint64_t events;

    bool operator==(const Rate&) const = default;
};

// It is what a machine asks of the trigger service at worst.
struct Load {
    bool isDecided = true;
    std::optional<std::uint64_t> most;  // collections ever; nothing if there is no bound
    std::optional<Rate> rate;           // in the long run, only if there is no bound
    std::size_t lap = 0;                // so many of the last steps of the route are the circle with that rate
    Route route;                        // that asks for the most, or goes round the circle once
    std::optional<std::size_t>
        distance;  // the least difference of the numbers of two events that ask; nothing if two never do
    Route distanceRoute;
};

Load worstLoad(Behaviour& machine);

// Returns the sets of states in one of which the machine stays, once it waits there: it can go from each to each other
// of the set, and to no others.
std::vector<std::vector<std::size_t>> statesToStay(Behaviour& machine);

}  // namespace Brenta::OS::VIG::Tool
