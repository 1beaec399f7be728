#include "tools/vig/fleet/DeviceRunner.h"

#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>

#include "rulesengine/FuncFilter.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/fleet/Fleet.h"
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

// It is a device at work, fed with one record after the other.
class DeviceRunner::Device {
  public:
    // Starts its machines. What they do goes to the output.
    Device(DeviceRunner& runner, std::string name, Output& output)
        : runner(runner),
          output(output),
          result{.device = std::move(name), .begun = true},
          report(reportOf({runner.plan.format, runner.plan.coloured, result.device}, output)),
          machines(runner.plan.context, *report, nullptr) {
        runner.atWork = this;
        machines.adopt(runner.newMachines(result.fired));
        machines.start();
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const std::string& name() const { return result.device; }
    MachineGroup& group() { return machines; }

    void offer(const EventRecord& record) {
        runner.atWork = this;
        machines.offer(record);
    }

    // Returns what became of it, when nothing more comes: it has ended, or there is a problem, or an interruption.
    DeviceResult end(bool hasEnded, const std::string& problem) {
        runner.atWork = this;
        if (problem.empty()) {
            report->end(machines.summary());
        }
        output.flush();
        result.ended = hasEnded;
        result.problem = problem;
        result.events = machines.eventCount();
        result.triggers = machines.triggerCount();
        return std::move(result);
    }

    double draw() {
        // A generator is large, and few rules draw.
        if (!draws) {
            draws = Draws{deviceSeed(runner.plan.draws.seed, name()), runner.plan.draws.numbers}.source();
        }
        return draws();
    }

  private:
    DeviceRunner& runner;
    Output& output;
    DeviceResult result;
    const std::unique_ptr<Report> report;
    MachineGroup machines;
    std::function<double()> draws;  // empty before the first one
};

DeviceRunner::DeviceRunner(const FleetPlan& plan)
    : plan(plan),
      parsed(machinesOf(plan.document, withDraws(plan.registry, [this] { return atWork->draw(); }))),
      receiver(*this) {}

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

void DeviceRunner::onLog(int priority, std::string_view tag, std::string_view message) {
    atWork->group().onLog(priority, tag, message);
}

void DeviceRunner::onTrigger(const vendor::orlan::velora::TriggerContext& context) {
    atWork->group().onTrigger(context);
}

DeviceResult DeviceRunner::run(const std::string& events, Output& output) {
    const std::string name = nameOfEvents(events);
    if (plan.interruption.requested()) {
        return {name};
    }
    Replay replay(events, EventReader::Devices::One, plan.console, plan.interruption);
    if (!replay.isOpen()) {
        return {.device = name, .problem = replay.problem()};
    }
    Device device(*this, name, output);
    const bool hasEnded = replay.play([&](const EventRecord& record) { device.offer(record); }, output, plan.progress);
    return device.end(hasEnded, replay.problem());
}

std::string DeviceRunner::runByDevice(const std::string& events, Output& output, FleetSummary& summary) {
    std::unordered_map<std::string, std::unique_ptr<Device>> alive;
    std::string told;  // the device whose text came last, if it is alive
    Output text([&](std::string_view piece) {
        if (plan.format == ReportFormat::Text && told != atWork->name()) {
            told = atWork->name();
            output.write("\n" + headingOf(told));
            // No empty line parts it from what it heads.
            piece.remove_prefix(piece.starts_with('\n') ? 1 : 0);
        }
        output.write(piece);
        return output.failure();
    });
    Replay replay(events, EventReader::Devices::Named, plan.console, plan.interruption);
    const auto end = [&](Device& device, bool hasEnded) {
        summary.add(device.end(hasEnded, replay.problem()));
        told.clear();
        plan.progress.addDevice();
    };
    const bool haveEnded = replay.play(
        [&](const EventRecord& record) {
            auto& device = alive[record.device];
            if (!device) {
                device = std::make_unique<Device>(*this, record.device, text);
            }
            if (record.isEnd) {
                end(*device, true);
                alive.erase(record.device);
            } else {
                device->offer(record);
                text.flush();
            }
        },
        output, plan.progress);
    if (alive.empty() && !haveEnded) {
        // Nobody knows which device it would have been.
        summary.add({.device = nameOfEvents(events), .problem = replay.problem()});
    }
    std::map<std::string_view, Device*> inOrder;
    for (const auto& [name, device] : alive) {
        inOrder.emplace(name, device.get());
    }
    for (const auto& [name, device] : inOrder) {
        end(*device, haveEnded);
    }
    return replay.problem();
}

}  // namespace Brenta::OS::VIG::Tool
