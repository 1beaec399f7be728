#pragma once

#include <optional>
#include <string>

#include "tools/vig/tune/FleetReading.h"
#include "tools/vig/tune/Search.h"
#include "tools/vig/tune/Thresholds.h"
#include "tools/vig/tune/TuneTarget.h"

namespace Brenta::OS::VIG::Tool {

// It is what there is to tell of a search that came to an end.
struct TuneReport {
    const TunePlan& plan;
    const TuneTarget& target;
    const std::string& targetText;
    const Tuning& tuning;

    // Returns the threshold that gives the target, if one does.
    std::optional<Rank> answer() const;
};

// Returns aligned lines for a person, with a bar for each threshold of the table.
std::string textOf(const TuneReport& report);

// Returns the same as a line with one JSON object.
std::string jsonOf(const TuneReport& report);

}  // namespace Brenta::OS::VIG::Tool
