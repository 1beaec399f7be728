#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/tune/Thresholds.h"
#include "tools/vig/tune/TunedConstant.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// All readings of a fleet have this in common. It is used by several threads at once, none of which changes it.
struct TunePlan {
    const DocumentModel& document;
    const TunedConstant& constant;
    const VIGParserConfig registry;  // the library's own
    const AttributeSet& context;
    const Draws& draws;  // of the run
    const std::vector<std::string>& devices;
    unsigned threads;
    const Console& console;
    const Interruption& interruption;
};

// It tells what a fleet did with one threshold. Parts may be added in any order.
struct FleetOutcome {
    std::uint64_t devices = 0;  // with a trigger
    std::uint64_t triggers = 0;
    std::uint64_t squares = 0;  // of the triggers of each device

    void addDevice(std::uint64_t triggersOfDevice);
    void add(const FleetOutcome& other);
    bool operator==(const FleetOutcome&) const = default;
};

// It is what the recordings gave when each was read once. Parts may be added in any order.
struct FleetReading {
    std::vector<FleetOutcome> outcomes;  // by the index of the threshold
    RankSample breakpoints;              // of the ranges that were asked for
    std::uint64_t devices = 0;           // whose files could be opened
    std::uint64_t events = 0;
    std::uint64_t milliseconds = 0;               // from the first to the last event of each device, of all together
    std::optional<std::size_t> timeless;          // the first device that has events and none with a time
    std::map<std::size_t, std::string> problems;  // by the index of the device

    void add(const FleetReading& other);
};

// Replays all recordings to machines with each of the thresholds at once, in place of the constant. In the ranges, it
// collects where the values of the events make a difference.
FleetReading readFleet(const TunePlan& plan, std::span<const Rank> thresholds, std::span<const RankRange> ranges);

}  // namespace Brenta::OS::VIG::Tool
