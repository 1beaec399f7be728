#pragma once

#include <cstdint>

namespace Brenta::OS::RulesEngine {

// The type is what an event reports, and what a transition listens for. The values are fixed and not contiguous:
// 0 to 2 are the engine's own kinds, a client's observations start at 1000.
enum class EventType : std::uint32_t {
    EnteringState = 0,  // raised by a machine on itself whenever it enters a state
    Timeout = 1,        // every event of this type is a TimeoutEvent
    Test = 2,
    TelemetryEventBegin = 1000,
    ProcessMemoryHeartBeat = 1001,
    SystemMemoryHeartBeat = 1002,
    ZramHeartBeat = 1003,
    ProcessCpuHeartBeat = 1004,
    ForegroundAppsStats = 1005,
    TelemetryEventEnd = 2000,
};

}  // namespace Brenta::OS::RulesEngine
