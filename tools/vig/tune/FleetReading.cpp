#include "tools/vig/tune/FleetReading.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <utility>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/Filter.h"
#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/State.h"
#include "tools/vig/document/NormalFilter.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/fleet/DeviceRunner.h"
#include "tools/vig/fleet/Jobs.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Progress.h"
#include "tools/vig/run/MachineGroup.h"
#include "tools/vig/run/PlatformServices.h"
#include "tools/vig/run/Replay.h"
#include "tools/vig/trace/RebuiltMachines.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::Event;
using RulesEngine::EventType;
using RulesEngine::Filter;
using RulesEngine::FiniteStateMachine;
using RulesEngine::State;
using RulesEngine::Transition;

namespace {

// A clock that was set meanwhile may tell any times.
constexpr std::uint64_t kLongestRecording = std::uint64_t{1} << 43;

// It has the machines of all thresholds at work, and counts what each asks for. It is a MachineGroup that keeps no more
// of them, as there are many. Used on one thread.
class ManyMachines final : public PlatformServices::Receiver {
  public:
    explicit ManyMachines(const AttributeSet& contextAttributes) : context(contextAttributes) {}

    void adopt(MachineGroup::Configs made) {
        configs = std::move(made);
        for (const auto& config : configs) {
            FiniteStateMachine& machine = *config->getConfigPayload()->getFiniteStateMachine();
            machine.setContext(std::make_unique<RecordedContext>(context));
            heard.merge(machine.getAllListeningEventTypes());
            machines.push_back(&machine);
        }
        triggers.resize(machines.size());
    }

    void start() {
        std::ranges::fill(triggers, 0);
        drive([](FiniteStateMachine& machine) { machine.enterState(machine.getStateByName(State::START_STATE)); });
    }

    void offer(const Event& event) {
        if (heard.contains(event.type)) {
            drive([&event](FiniteStateMachine& machine) { machine.onEvent(event); });
        }
    }

    // Returns the index of the machine that does something. REQUIRES: called while one does.
    std::size_t drivenIndex() const { return driven; }

    std::uint64_t triggersOf(std::size_t machine) const { return triggers[machine]; }

    void onLog(int /*priority*/, std::string_view /*tag*/, std::string_view /*message*/) override {}
    void onTrigger(const vendor::orlan::velora::TriggerContext& /*context*/) override { ++triggers[driven]; }

  private:
    void drive(const auto& act) {
        for (driven = 0; driven < machines.size(); ++driven) {
            act(*machines[driven]);
        }
    }

    const AttributeSet& context;
    MachineGroup::Configs configs;
    std::vector<FiniteStateMachine*> machines;
    std::unordered_set<EventType> heard;
    std::vector<std::uint64_t> triggers;
    std::size_t driven = 0;
};

bool draws(const ConfigModel& config) {
    return std::ranges::any_of(config.transitions, [](const TransitionModel& transition) {
        return std::ranges::any_of(transition.filters, [](const FilterModel& filter) { return Tool::draws(filter); });
    });
}

// Finds the value that the constant is compared with in an event, and where it makes a difference.
class Collector {
  public:
    Collector(const TunePlan& plan, std::span<const RankRange> ranges)
        : constant(plan.constant),
          model(plan.document.configs[constant.config].transitions[constant.transition]),
          context(plan.context),
          ranges(ranges) {}

    // Takes the filters that the library made of the transition that has the constant.
    void setFilters(const Transition& transition) {
        for (std::size_t i = 0; i < model.filters.size(); ++i) {
            // A draw would be one that the machines miss.
            if (i != constant.filter && !Tool::draws(model.filters[i])) {
                others.push_back(transition.getFilters()[i]);
            }
        }
    }

    void collect(const Event& event, RankSample& sample) const {
        if (ranges.empty() || event.type != model.event || !isAttribute(constant.other())) {
            return;
        }
        const auto value = constant.model->valueType == FilterValueType::Integer
                               ? rankOfValue(event.getInt64Attr(name()), context.getInt64Attr(name()))
                               : rankOfValue(event.getDoubleAttr(name()), context.getDoubleAttr(name()));
        if (!value || !std::ranges::all_of(others, [&](const auto& filter) { return (*filter)(context, event); })) {
            return;
        }
        for (const Rank breakpoint : breakpointsOf(constant.op(), *value)) {
            if (std::ranges::any_of(ranges, [&](const RankRange& range) { return range.holds(breakpoint); })) {
                sample.add(breakpoint);
            }
        }
    }

  private:
    const std::string& name() const { return constant.other().operand.value; }

    template <typename T>
    static std::optional<Rank> rankOfValue(std::optional<T> ofEvent, std::optional<T> ofContext) {
        const std::optional<T> value = ofEvent ? ofEvent : ofContext;
        if constexpr (std::is_same_v<T, double>) {
            if (value && !std::isfinite(*value)) {
                return std::nullopt;
            }
        }
        return value ? std::optional(rankOf(*value)) : std::nullopt;
    }

    const TunedConstant& constant;
    const TransitionModel& model;
    const RecordedContext context;
    const std::span<const RankRange> ranges;
    std::vector<std::shared_ptr<Filter>> others;
};

// Replays devices one after the other, on the thread that made it.
class DeviceReader {
  public:
    DeviceReader(const TunePlan& plan, std::span<const Rank> thresholds, std::span<const RankRange> ranges,
                 Progress& progress)
        : plan(plan),
          progress(progress),
          collector(plan, ranges),
          needed(neededConfigs()),
          machines(plan.context),
          receiver(machines),
          sources(thresholds.size()) {
        machines.adopt(newMachines(thresholds));
        reading.outcomes.resize(thresholds.size());
    }
    DeviceReader(const DeviceReader&) = delete;
    DeviceReader& operator=(const DeviceReader&) = delete;

    void read(std::size_t device) {
        const std::string& file = plan.devices[device];
        const Descriptor records(openEvents(file, plan.console));
        struct stat status = {};
        if (!records.isOpen() || fstat(records.get(), &status) != 0) {
            reading.problems[device] = whyEventsNotOpened(file, errno);
            return;
        }
        if (!S_ISREG(status.st_mode)) {
            reading.problems[device] = "vig: error: " + file + ": expected a file, which is read more than once";
            return;
        }
        ++reading.devices;
        start(nameOfEvents(file));
        replay(device, records);
        for (std::size_t i = 0; i < reading.outcomes.size(); ++i) {
            reading.outcomes[i].addDevice(machines.triggersOf(i * needed.size() + tunedMachine));
        }
    }

    FleetReading reading;

  private:
    // Machines draw one after the other, so that all that draw are needed if the one with the constant does.
    std::vector<std::size_t> neededConfigs() {
        const auto& configs = plan.document.configs;
        std::vector<std::size_t> result;
        for (std::size_t i = 0; i < configs.size(); ++i) {
            if (i == plan.constant.config) {
                tunedMachine = result.size();
                result.push_back(i);
            } else if (draws(configs[plan.constant.config]) && draws(configs[i])) {
                result.push_back(i);
            }
        }
        return result;
    }

    MachineGroup::Configs newMachines(std::span<const Rank> thresholds) {
        const std::size_t each = needed.size();
        const VIGParserConfig registry =
            withDraws(plan.registry, [this, each] { return sources[machines.drivenIndex() / each](); });
        auto all = std::move(*VIGResponseParser().parseFromString(plan.document.text.source().text(), registry).value);
        MachineGroup::Configs parsed;
        std::vector<ConfigModel> models;
        for (const std::size_t config : needed) {
            parsed.push_back(std::move(all[config]));
            models.push_back(plan.document.configs[config]);
        }
        MachineGroup::Configs result;
        for (const Rank threshold : thresholds) {
            const std::shared_ptr<Filter> changed = _parseFilter(plan.constant.with(threshold), registry);
            auto machinesOfThreshold =
                rebuilt(parsed, models, [&](const Transition& transition, std::size_t config, std::size_t index) {
                    auto filters = transition.getFilters();
                    if (config == tunedMachine && index == plan.constant.transition) {
                        filters[plan.constant.filter] = changed;
                    }
                    return filters;
                });
            std::ranges::move(machinesOfThreshold, std::back_inserter(result));
        }
        // The collector is given the filters by the same way, as only that knows where a transition stands.
        rebuilt(parsed, models, [&](const Transition& transition, std::size_t config, std::size_t index) {
            if (config == tunedMachine && index == plan.constant.transition) {
                collector.setFilters(transition);
            }
            return transition.getFilters();
        });
        return result;
    }

    void start(const std::string& name) {
        for (auto& source : sources) {
            source = Draws{deviceSeed(plan.draws.seed, name), plan.draws.numbers}.source();
        }
        machines.start();
        collector.collect(Event::ENTERING_STATE, reading.breakpoints);
    }

    void replay(std::size_t device, const Descriptor& records) {
        EventReader reader(records.get(), plan.devices[device], EventReader::Devices::One, plan.interruption, [] {});
        ReadingProgress read(progress);
        std::uint64_t events = 0;
        std::optional<std::int64_t> earliest;
        std::optional<std::int64_t> latest;
        auto status = EventReader::Status::Record;
        while (!plan.interruption.requested() && (status = reader.next()) == EventReader::Status::Record) {
            const EventRecord& record = reader.record();
            ++events;
            read.update(events, reader.bytesRead());
            offer(record);
            if (record.timeMs) {
                earliest = std::min(earliest.value_or(*record.timeMs), *record.timeMs);
                latest = std::max(latest.value_or(*record.timeMs), *record.timeMs);
            }
        }
        read.tell(events, reader.bytesRead());
        if (status == EventReader::Status::Failed) {
            reading.problems[device] = reader.error();
        }
        reading.events += events;
        if (latest) {
            reading.milliseconds += std::min(
                static_cast<std::uint64_t>(*latest) - static_cast<std::uint64_t>(*earliest), kLongestRecording);
        } else if (events > 0) {
            reading.timeless = std::min(reading.timeless.value_or(device), device);
        }
    }

    void offer(const EventRecord& record) {
        const auto offerThis = [this](const Event& event) {
            machines.offer(event);
            collector.collect(event, reading.breakpoints);
        };
        if (record.type == EventType::Timeout) {
            offerThis(RecordedTimeoutEvent(record.attributes, *record.timeoutId));
        } else {
            offerThis(RecordedEvent(record.attributes, record.type));
        }
    }

    const TunePlan& plan;
    Progress& progress;
    Collector collector;
    std::size_t tunedMachine = 0;  // among those of a threshold
    const std::vector<std::size_t> needed;
    ManyMachines machines;
    const PlatformServices::OnThread receiver;
    std::vector<std::function<double()>> sources;  // of the draws, by the index of the threshold
};

}  // namespace

void FleetOutcome::addDevice(std::uint64_t triggersOfDevice) {
    add({triggersOfDevice > 0 ? 1u : 0u, triggersOfDevice, triggersOfDevice * triggersOfDevice});
}

void FleetOutcome::add(const FleetOutcome& other) {
    devices += other.devices;
    triggers += other.triggers;
    squares += other.squares;
}

void FleetReading::add(const FleetReading& other) {
    outcomes.resize(other.outcomes.size());
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        outcomes[i].add(other.outcomes[i]);
    }
    breakpoints.merge(other.breakpoints);
    devices += other.devices;
    events += other.events;
    milliseconds += other.milliseconds;
    if (other.timeless) {
        timeless = std::min(timeless.value_or(*other.timeless), *other.timeless);
    }
    problems.insert(other.problems.begin(), other.problems.end());
}

FleetReading readFleet(const TunePlan& plan, std::span<const Rank> thresholds, std::span<const RankRange> ranges) {
    Progress progress(plan.console.err, {plan.devices.size(), sizeOfEvents(plan.devices, plan.console)});
    std::mutex mutex;
    FleetReading all;  // guarded by mutex
    std::atomic<std::size_t> next = 0;
    onThreads(std::min<std::size_t>(plan.threads, plan.devices.size()), [&] {
        DeviceReader reader(plan, thresholds, ranges, progress);
        for (std::size_t device = next++; device < plan.devices.size() && !plan.interruption.requested();
             device = next++) {
            reader.read(device);
            progress.addDevice();
        }
        const std::lock_guard lock(mutex);
        all.add(reader.reading);
    });
    return all;
}

}  // namespace Brenta::OS::VIG::Tool
