#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// It says what became of one transition over a whole run, and what kept it from firing. It refers to the document.
struct WhyNot {
    // It is the comparison of numbers that came nearest to being true.
    struct NearestMiss {
        double distance;  // by which one side would have to change; 0 if the sides are equal doubles and may not be
        ComparedValue left;
        ComparedValue right;
        std::uint64_t event;
        std::optional<std::int64_t> timeMs;
    };

    struct Stops {
        std::uint64_t count = 0;  // how often the filter was the one that did not hold
        std::optional<NearestMiss> nearest;
    };

    const TransitionModel* transition;
    const ConfigModel* config;
    std::size_t machine;
    std::uint64_t events = 0;      // offered to the machine, and raised by it where the transition listens for them
    std::uint64_t otherTypes = 0;  // for which the transition does not listen
    std::map<std::string, std::uint64_t> otherStates = {};  // in which an event of its type met the machine
    std::uint64_t earlierFired = 0;                         // before it was tried
    std::uint64_t tried = 0;
    std::vector<Stops> stops = {};  // by the index of the filter
    std::uint64_t fired = 0;
    bool wasInState = true;  // the machine was once in the state that the transition leaves

    // If it was not: the transitions on the ways there at which the machine got stuck; none if there is no way.
    std::vector<WhyNot> upstream = {};

    // If another one fired each time before it was tried: these.
    std::vector<const TransitionModel*> earlier = {};
};

// Returns how far a comparison that is false is from being true; empty if it has no distance.
std::optional<double> missOf(const Comparison& comparison);

}  // namespace Brenta::OS::VIG::Tool
