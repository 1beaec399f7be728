#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/fleet/FleetSummary.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"
#include "tools/vig/io/Output.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/Draws.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/ReportWriters.h"
#include "vig/parsers/VIGParserConfig.h"

namespace Brenta::OS::VIG::Tool {

// All devices of a fleet have this in common. It is used by several threads at once, none of which changes anything but
// the progress.
struct FleetPlan {
    const DocumentModel& document;
    const VIGParserConfig registry;  // the library's own
    const AttributeSet& context;
    const Draws& draws;  // of the run
    ReportFormat format;
    bool coloured;
    const Console& console;
    const Interruption& interruption;
    Progress& progress;
};

// Drops what machines and the parser do, where nobody is to see it.
class NoReceiver final : public PlatformServices::Receiver {
  public:
    void onLog(int /*priority*/, std::string_view /*tag*/, std::string_view /*message*/) override {}
    void onTrigger(const vendor::orlan::velora::TriggerContext& /*context*/) override {}
};

// Returns machines of a document that has been accepted. What the parser logs has been reported then.
MachineGroup::Configs machinesOf(const DocumentModel& document, const VIGParserConfig& registry);

// Returns where the draws of a device begin: each has its own ones, which depend on nothing but its name and the seed
// of the run.
std::uint32_t deviceSeed(std::uint32_t seed, std::string_view name);

// Runs devices, on the thread that made it, of which it is the receiver. The document is parsed once; each device has
// machines of its own, which share only the filters and actions, as these keep nothing. REQUIRES: PlatformServices
// exist.
class DeviceRunner final : private PlatformServices::Receiver {
  public:
    explicit DeviceRunner(const FleetPlan& plan);
    DeviceRunner(const DeviceRunner&) = delete;
    DeviceRunner& operator=(const DeviceRunner&) = delete;

    // Replays the records of one device to its machines, which see the same as those of `vig run` with that file alone
    // and with deviceSeed(). What they do is written to `output`.
    DeviceResult run(const std::string& events, Output& output);

    // Replays records that name their devices, to the machines of each, as if each had a file of its name. A device is
    // added to the summary and forgotten as soon as it has ended. What the machines do is written to `output` as they
    // do it, in text with a heading where the device changes. Returns why the records could not be read to their end;
    // empty if nothing was wrong with them.
    std::string runByDevice(const std::string& events, Output& output, FleetSummary& summary);

  private:
    class Device;

    // Makes machines in their start state, which count in `fired` how often each transition fires.
    MachineGroup::Configs newMachines(FiredCounts& fired) const;

    void onLog(int priority, std::string_view tag, std::string_view message) override;
    void onTrigger(const vendor::orlan::velora::TriggerContext& context) override;

    const FleetPlan& plan;
    Device* atWork = nullptr;  // the device whose machines do something, or did last
    const MachineGroup::Configs parsed;
    const PlatformServices::OnThread receiver;
};

}  // namespace Brenta::OS::VIG::Tool
