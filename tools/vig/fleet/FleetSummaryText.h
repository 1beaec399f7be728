#pragma once

#include <string>

#include "tools/vig/fleet/FleetSummary.h"

namespace Brenta::OS::VIG::Tool {

// Aligned lines for a person, without what a terminal would act on.
std::string textOf(const FleetSummary& summary);

// The same as a line with one JSON object, which readFleetSummary() reads back to an equal one. `first` is put before
// its keys.
std::string jsonOf(const FleetSummary& summary, const std::string& first);

}  // namespace Brenta::OS::VIG::Tool
