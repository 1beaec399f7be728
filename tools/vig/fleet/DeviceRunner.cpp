#include "tools/vig/fleet/DeviceRunner.h"

#include <memory>
#include <utility>

#include "rulesengine/FuncFilter.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/trace/RebuiltMachines.h"
#include "tools/vig/words/Text.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EvaluationContext;
using RulesEngine::Event;
using RulesEngine::FuncFilter;
using RulesEngine::Transition;

MachineGroup::Configs machinesOf(const DocumentModel& document, const VIGParserConfig& registry) {
    NoReceiver quiet;
    const PlatformServices::OnThread receiver(quiet);
    return std::move(*VIGResponseParser().parseFromString(document.text.source().text(), registry).value);
}

std::uint32_t deviceSeed(std::uint32_t seed, std::string_view name) {
    const std::uint64_t hash = hashOf(name);
    return seed ^ static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

DeviceRunner::DeviceRunner(const FleetPlan& plan)
    : plan(plan), parsed(machinesOf(plan.document, withDraws(plan.registry, [this] { return draw(); }))) {}

MachineGroup::Configs DeviceRunner::newMachines(FiredCounts& fired) const {
    for (const ConfigModel& each : plan.document.configs) {
        fired.emplace_back(each.transitions.size());
    }
    return rebuilt(
        parsed, plan.document.configs, [&fired](const Transition& transition, std::size_t config, std::size_t index) {
            auto filters = transition.getFilters();
            // When the last filter is asked, nothing keeps the transition from firing any more.
            filters.push_back(
                std::make_shared<FuncFilter>([&count = fired[config][index]](const EvaluationContext&, const Event&) {
                    ++count;
                    return true;
                }));
            return filters;
        });
}

DeviceResult DeviceRunner::run(const std::string& device, Output& output) {
    const std::string name = nameOfEvents(device);
    DeviceResult result{name};
    if (plan.interruption.requested()) {
        return result;
    }
    Replay replay(device, plan.console, plan.interruption);
    result.begun = replay.isOpen();
    if (result.begun) {
        const auto report = reportOf({plan.format, plan.coloured, name}, output);
        draw = Draws{deviceSeed(plan.draws.seed, name), plan.draws.numbers}.source();
        MachineGroup machines(plan.context, *report, nullptr);
        machines.adopt(newMachines(result.fired));
        const PlatformServices::OnThread receiver(machines);
        machines.start();
        result.ended = replay.play([&](const EventRecord& record) { machines.offer(record); }, output, -1);
        if (replay.problem().empty()) {
            report->end(machines.summary());
        }
        result.events = machines.eventCount();
        result.triggers = machines.triggerCount();
    }
    result.problem = replay.problem();
    return result;
}

}  // namespace Brenta::OS::VIG::Tool
