#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/tune/FleetReading.h"
#include "tools/vig/tune/Thresholds.h"
#include "tools/vig/tune/TuneTarget.h"

namespace Brenta::OS::VIG::Tool {

// It is what came out of a search. All outcomes are of thresholds that were replayed.
struct Tuning {
    std::map<Rank, FleetOutcome> tried = {};
    FleetSize size = {};
    std::uint64_t events = 0;
    std::map<std::size_t, std::string> problems = {};  // by the index of the device
    std::string failure = {};                          // why nothing can be said; empty if something can

    // The threshold with the most that is not above the target, and of those the roundest one; and the one with the
    // least that is.
    std::optional<Rank> nearestBelow = {};
    std::optional<Rank> nearestAbove = {};
};

// Replays the fleet until no value that it has lies between a threshold above the target and one that is not, or
// something else ends it: nothing in it says that a higher threshold gives more, or less. Of an interrupted search
// nothing is of use.
Tuning searchThreshold(const TunePlan& plan, const TuneTarget& target);

}  // namespace Brenta::OS::VIG::Tool
