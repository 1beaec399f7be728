#pragma once

#include <cstdint>

namespace Brenta::OS::RulesEngine {

// The type is what an event reports, and what a transition listens for. The values are fixed and not contiguous:
// 0 to 2 are the engine's own kinds, a client's observations start at 1000.
enum class EventType : std::uint32_t {
    EnteringState = 0,              // raised by a machine on itself whenever it enters a state
    Timeout = 1,                    // every event of this type is a TimeoutEvent
    Test = 2,                       // for trying a document out
    TelemetryEventBegin = 1000,     // marks where the observations begin
    ProcessMemoryHeartBeat = 1001,  // the memory of one process
    SystemMemoryHeartBeat = 1002,   // the memory of the whole system
    ZramHeartBeat = 1003,           // the figures of zram, the swap that is compressed in memory
    ProcessCpuHeartBeat = 1004,     // the CPU use of one process
    ForegroundAppsStats = 1005,     // which applications are in the foreground
    TelemetryEventEnd = 2000,       // marks where the observations end
};

}  // namespace Brenta::OS::RulesEngine
