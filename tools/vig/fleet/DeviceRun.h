#pragma once

#include <cstdint>
#include <string>

#include "tools/vig/AttributeSet.h"
#include "tools/vig/Console.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/Output.h"
#include "tools/vig/RuleRun.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/trace/Trace.h"
#include "vig/parsers/VIGParserConfig.h"

namespace tool {

// What all devices of a fleet have in common. Used by several threads at once, none of which changes it.
struct FleetPlan {
    const TracedDocument& document;
    const Brenta::OS::VIG::VIGParserConfig registry;  // the library's own
    const AttributeSet& context;
    const std::uint32_t seed;
    const ReportFormat format;
    const bool coloured;
    const Console& console;
    const Interruption& interruption;
};

// Offers the records of a device to machines of its own, which see the same as those of `vig run` with that file
// alone. What they do is written to `output`. Takes the place of the receiver of the thread meanwhile.
// REQUIRES: PlatformServices exist.
DeviceResult runDevice(const FleetPlan& plan, const std::string& device, Output& output);

}  // namespace tool
