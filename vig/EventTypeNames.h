#pragma once

#include <string_view>

#include "os/LookupTable.h"
#include "rulesengine/EventType.h"

namespace Brenta::OS::VIG {

// Documents, and the tool's event records, refer to the event types by these names.
inline constexpr auto kEventTypeNames = makeLookupTable<RulesEngine::EventType, std::string_view>({
    {RulesEngine::EventType::EnteringState, "EnteringState"},
    {RulesEngine::EventType::Timeout, "Timeout"},
    {RulesEngine::EventType::Test, "Test"},
    {RulesEngine::EventType::TelemetryEventBegin, "TelemetryEventBegin"},
    {RulesEngine::EventType::ProcessMemoryHeartBeat, "ProcessMemoryHeartBeat"},
    {RulesEngine::EventType::SystemMemoryHeartBeat, "SystemMemoryHeartBeat"},
    {RulesEngine::EventType::ZramHeartBeat, "ZramHeartBeat"},
    {RulesEngine::EventType::ProcessCpuHeartBeat, "ProcessCpuHeartBeat"},
    {RulesEngine::EventType::ForegroundAppsStats, "ForegroundAppsStats"},
    {RulesEngine::EventType::TelemetryEventEnd, "TelemetryEventEnd"},
});

}  // namespace Brenta::OS::VIG
