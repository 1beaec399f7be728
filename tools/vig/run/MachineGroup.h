#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tools/vig/events/AttributeSet.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/trace/Report.h"
#include "tools/vig/trace/Tracer.h"

namespace Brenta::OS::VIG::Tool {

// It has the machines of a rule document at work: offered one event after the other, with everything that they do in
// the report. What they log and trigger comes back to it, so it has to be the receiver of its thread. Used on one
// thread.
class MachineGroup final : public PlatformServices::Receiver {
  public:
    using Configs = std::vector<std::unique_ptr<VIGConfig>>;

    // Every machine's context has the attributes given. `watcher`, which may be null, is told what the machines
    // decide. All three must outlive it.
    MachineGroup(const AttributeSet& contextAttributes, Report& report, Tracer* watcher);
    MachineGroup(const MachineGroup&) = delete;
    MachineGroup& operator=(const MachineGroup&) = delete;

    // Puts the machines of the configurations in the place of the previous ones.
    void adopt(Configs delivered);

    void start();

    // Puts the machines back into their start states and starts them, as if nothing had been offered yet.
    void startAnew();

    void offer(const EventRecord& record);

    // Lets what is logged until the next event belong to none.
    void leaveEvent() { current = 0; }

    std::size_t size() const { return machines.size(); }

    // Returns the place of the machine that does something. REQUIRES: called while one does.
    std::size_t drivenIndex() const { return driven->name.index; }

    std::uint64_t eventCount() const { return events; }
    std::uint64_t triggerCount() const { return triggers; }

    // The summary is of everything since the beginning; its `sampling` is empty.
    Summary summary() const;

    void onLog(int priority, std::string_view tag, std::string_view message) override;
    void onTrigger(const vendor::orlan::velora::TriggerContext& request) override;

  private:
    struct Machine {
        RulesEngine::FiniteStateMachine* machine;
        MachineName name;
        std::int64_t payloadId;
        RulesEngine::State* state;  // as it has been reported
    };

    // Has each machine do something, which an event of that type causes. `raised` is true if it makes the event itself.
    void drive(RulesEngine::EventType type, std::optional<std::int64_t> timeMs, bool raised, const auto& act);

    const AttributeSet& context;
    Report& report;
    Tracer* const tracer;
    Configs configs;
    std::vector<Machine> machines;
    std::uint64_t events = 0;
    std::uint64_t triggers = 0;
    std::uint64_t current = 0;        // the event that is being offered
    const Machine* driven = nullptr;  // and the machine to which it is offered; null while none is at work
};

}  // namespace Brenta::OS::VIG::Tool
