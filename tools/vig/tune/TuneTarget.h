#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vig/tune/Certainty.h"
#include "tools/vig/tune/FleetReading.h"

namespace Brenta::OS::VIG::Tool {

// It says how large the fleet is that was read.
struct FleetSize {
    std::uint64_t devices;
    double days;  // of all devices together; 0 if not known
};

// It is what is wanted of a threshold: a share of the devices that fire, or triggers a device and day.
struct TuneTarget {
    enum class Kind { Share, Rate };

    // Reads "0.1%" or "3/day"; returns nothing if the text is neither.
    static std::optional<TuneTarget> of(std::string_view text);

    // Returns the number that an outcome has in the place of `value`.
    double measure(const FleetOutcome& outcome, const FleetSize& size) const;

    bool isBelow(const FleetOutcome& outcome, const FleetSize& size) const;

    // Returns what the outcome says of all devices that there are.
    Interval interval(const FleetOutcome& outcome, const FleetSize& size) const;

    // Returns true if devices fire, not more than wanted, and not clearly less.
    bool isGivenBy(const FleetOutcome& outcome, const FleetSize& size) const;

    // Returns what the fleet can tell of the target; how much devices differ is seen in the outcome.
    Certainty certainty(const FleetOutcome& outcome, const FleetSize& size) const;

    Kind kind;
    double value;  // a share of 1, or triggers
};

}  // namespace Brenta::OS::VIG::Tool
