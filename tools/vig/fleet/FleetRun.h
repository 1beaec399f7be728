#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/vig/fleet/DeviceRun.h"
#include "tools/vig/fleet/FleetSummary.h"

namespace Brenta::OS::VIG::Tool {

// Runs the devices on that many threads, this one included, and puts all that they do, and what is wrong with them, on
// the console in their order, whatever the number of threads. Returns the summary. REQUIRES: PlatformServices exist.
FleetSummary runFleet(const FleetPlan& plan, const std::vector<std::string>& devices, std::size_t threads,
                      Output& output);

}  // namespace Brenta::OS::VIG::Tool
