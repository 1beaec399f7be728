#include "tools/vig/fleet/MachineExplainer.h"

#include <memory>
#include <optional>
#include <utility>

#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/FuncFilter.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/trace/RebuiltMachines.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::EventType;
using RulesEngine::FuncFilter;
using RulesEngine::Transition;

// A machine has no way into a state but to enter it, which may lead on at once. So each transition has a first filter
// that keeps it from firing meanwhile.
MachineExplainer::MachineExplainer(const DocumentModel& document, const VIGParserConfig& registry,
                                   const std::function<double()>& draw, const AttributeSet& context)
    : tracer(*this) {
    const auto watched =
        tracer.watch(document.configs, machinesOf(document, tracer.registryFrom(withDraws(registry, draw))));
    const auto gate = std::make_shared<FuncFilter>([this](const EvaluationContext&, const Event&) { return isMoving; });
    machines = rebuilt(watched, document.configs, [&gate](const Transition& transition, std::size_t, std::size_t) {
        auto filters = transition.getFilters();
        filters.insert(filters.begin(), gate);
        return filters;
    });
    for (const auto& each : machines) {
        each->getConfigPayload()->getFiniteStateMachine()->setContext(std::make_unique<RecordedContext>(context));
    }
}

std::vector<Step> MachineExplainer::explain(std::size_t index, const std::string& state, std::uint64_t event,
                                            const EventRecord* record) {
    NoReceiver quiet;
    const PlatformServices::OnThread receiver(quiet);
    const VIGConfig& config = *machines[index];
    auto& machine = *config.getConfigPayload()->getFiniteStateMachine();
    isMoving = false;
    machine.enterState(machine.getStateByName(state));
    isMoving = true;
    // The name of the machine's own state lives as long as the steps.
    const std::string_view name = machine.getCurrentState()->getName();
    const MachineName machineName{index, config.getConfigId()};
    if (record == nullptr) {
        tracer.begin(event, EventType::EnteringState, std::nullopt, machineName, name, true);
        machine.start();
    } else {
        tracer.begin(event, record->type, record->timeMs, machineName, name, false);
        withEventOf(*record, [&machine](const Event& offered) { machine.onEvent(offered); });
    }
    tracer.end();
    return std::exchange(steps, {});
}

}  // namespace Brenta::OS::VIG::Tool
