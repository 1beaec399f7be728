#include "tools/vig/run/MachineGroup.h"

#include <host/Host.h>

#include <utility>

#include "rulesengine/State.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::Event;
using RulesEngine::EventType;
using RulesEngine::FiniteStateMachine;
using RulesEngine::State;

MachineGroup::MachineGroup(const AttributeSet& contextAttributes, Report& report, Tracer* watcher)
    : context(contextAttributes), report(report), tracer(watcher) {}

void MachineGroup::adopt(Configs delivered) {
    machines.clear();
    configs = std::move(delivered);
    for (const auto& config : configs) {
        auto* const payload = config->getConfigPayload();
        auto* const machine = payload->getFiniteStateMachine();
        machine->setContext(std::make_unique<RecordedContext>(context));
        const MachineName name{machines.size(), config->getConfigId()};
        machines.push_back({machine, name, payload->getConfigPayloadId(), machine->getCurrentState()});
    }
}

void MachineGroup::drive(EventType type, std::optional<std::int64_t> timeMs, bool raised, const auto& act) {
    for (const Machine& each : machines) {
        driven = &each;
        if (tracer != nullptr) {
            tracer->begin(current, type, timeMs, each.name, each.state->getName(), raised);
        }
        act(*each.machine);
        if (tracer != nullptr) {
            tracer->end();
        }
    }
    driven = nullptr;
    // The report lists moves last, after all that the event has caused.
    for (Machine& each : machines) {
        State* const reached = each.machine->getCurrentState();
        if (reached != each.state) {
            report.move({current, each.name, each.state->getName(), reached->getName()});
            each.state = reached;
        }
    }
}

void MachineGroup::start() {
    current = 0;
    drive(EventType::EnteringState, std::nullopt, true, [](FiniteStateMachine& machine) { machine.start(); });
}

void MachineGroup::startAnew() {
    events = 0;
    triggers = 0;
    current = 0;
    for (Machine& each : machines) {
        each.state = each.machine->getStateByName(State::START_STATE);
    }
    drive(EventType::EnteringState, std::nullopt, true,
          [](FiniteStateMachine& machine) { machine.enterState(machine.getStateByName(State::START_STATE)); });
}

void MachineGroup::offer(const EventRecord& record) {
    current = ++events;
    if (tracer != nullptr) {
        tracer->offer(record);
    }
    withEventOf(record, [&](const Event& event) {
        drive(event.type, record.timeMs, false, [&](FiniteStateMachine& machine) { machine.onEvent(event); });
    });
}

Summary MachineGroup::summary() const {
    Summary result{events, triggers, {}, std::nullopt};
    for (const Machine& each : machines) {
        result.machines.push_back({each.name, each.payloadId, each.state->getName()});
    }
    return result;
}

void MachineGroup::onLog(int priority, std::string_view tag, std::string_view message) {
    report.log({current, priority, tag, message, driven != nullptr ? std::optional(driven->name.index) : std::nullopt});
}

void MachineGroup::onTrigger(const vendor::orlan::velora::TriggerContext& request) {
    ++triggers;
    TriggerLine line{current, driven->name, host::toUtf8(request.triggerName), std::nullopt, {}};
    if (request.processName) {
        line.processName = host::toUtf8(*request.processName);
    }
    if (request.metadata) {
        for (const auto& entry : *request.metadata) {
            line.metadata.push_back(entry ? host::toUtf8(*entry) : std::string());
        }
    }
    report.trigger(line);
}

}  // namespace Brenta::OS::VIG::Tool
