#include "tools/vig/fleet/FleetSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::vector<FleetSummary::Transition> transitionsOf(const ConfigModel& config) {
    std::vector<FleetSummary::Transition> transitions;
    for (const TransitionModel& each : config.transitions) {
        transitions.push_back({each.place.path, each.from, each.to, std::string(nameOf(each.event))});
    }
    return transitions;
}

bool isSame(const FleetSummary::Transition& left, const FleetSummary::Transition& right) {
    const auto all = [](const auto& each) { return std::tie(each.path, each.from, each.to, each.event); };
    return all(left) == all(right);
}

}  // namespace

void FleetSummary::Count::add(const Count& other) {
    devices += other.devices;
    fired += other.fired;
}

bool FleetSummary::Storm::comesBefore(const Storm& other) const {
    return std::tie(other.triggers, device, events) < std::tie(triggers, other.device, other.events);
}

bool FleetSummary::isStorm(std::uint64_t triggers, std::uint64_t events) {
    return triggers >= Storm::LEAST_TRIGGERS && events / triggers < Storm::MOST_EVENTS;
}

FleetSummary FleetSummary::of(const DocumentModel& document) {
    FleetSummary summary;
    summary.documentHash = fmt::format("{:016x}", hashOf(document.text.source().text()));
    for (const ConfigModel& each : document.configs) {
        summary.configs.push_back({each.place.path, each.id, {}, transitionsOf(each)});
    }
    return summary;
}

void FleetSummary::add(const DeviceResult& result) {
    failed += result.problem.empty() ? 0 : 1;
    unfinished += result.problem.empty() && !result.ended ? 1 : 0;
    if (!result.begun) {
        return;
    }
    events += result.events;
    ++devicesByTriggers[result.triggers];
    for (std::size_t config = 0; config < configs.size(); ++config) {
        std::uint64_t all = 0;
        for (std::size_t index = 0; index < configs[config].transitions.size(); ++index) {
            const std::uint64_t fired = result.fired[config][index];
            configs[config].transitions[index].count.add({fired > 0 ? 1u : 0u, fired});
            all += fired;
        }
        configs[config].count.add({all > 0 ? 1u : 0u, all});
    }
    if (isStorm(result.triggers, result.events)) {
        ++stormyDevices;
        // A name has its place by the bytes that are written and read again.
        worstStorms.push_back({replaceInvalidUtf8(result.device), result.triggers, result.events});
        keepWorstStorms();
    }
}

void FleetSummary::merge(const FleetSummary& other) {
    failed += other.failed;
    unfinished += other.unfinished;
    events += other.events;
    for (const auto& [triggers, count] : other.devicesByTriggers) {
        devicesByTriggers[triggers] += count;
    }
    for (std::size_t config = 0; config < configs.size(); ++config) {
        configs[config].count.add(other.configs[config].count);
        for (std::size_t index = 0; index < configs[config].transitions.size(); ++index) {
            configs[config].transitions[index].count.add(other.configs[config].transitions[index].count);
        }
    }
    stormyDevices += other.stormyDevices;
    worstStorms.insert(worstStorms.end(), other.worstStorms.begin(), other.worstStorms.end());
    keepWorstStorms();
}

std::string FleetSummary::tooLarge() const {
    const std::pair<const char*, std::uint64_t> numbers[] = {
        {"failed", failed}, {"unfinished", unfinished},     {"devices", devices()},
        {"events", events}, {"triggers.total", triggers()},
    };
    for (const auto& [path, number] : numbers) {
        if (number > MOST) {
            return path;
        }
    }
    // The other numbers are parts of these.
    for (std::size_t config = 0; config < configs.size(); ++config) {
        if (configs[config].count.fired > MOST) {
            return fmt::format("configs[{}].fired", config);
        }
    }
    return {};
}

bool FleetSummary::isOfSameDocument(const FleetSummary& other) const {
    return documentHash == other.documentHash &&
           std::ranges::equal(configs, other.configs, [](const Config& left, const Config& right) {
               return left.path == right.path && left.id == right.id &&
                      std::ranges::equal(left.transitions, right.transitions, isSame);
           });
}

std::uint64_t FleetSummary::devices() const {
    return std::accumulate(devicesByTriggers.begin(), devicesByTriggers.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const auto& each) { return sum + each.second; });
}

std::uint64_t FleetSummary::triggers() const {
    return std::accumulate(devicesByTriggers.begin(), devicesByTriggers.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const auto& each) { return sum + each.first * each.second; });
}

std::uint64_t FleetSummary::percentile(std::uint64_t percent) const {
    const std::uint64_t all = devices();
    // A product of all devices could overflow.
    const std::uint64_t needed = all / 100 * percent + (all % 100 * percent + 99) / 100;
    std::uint64_t passed = 0;
    for (const auto& [triggers, count] : devicesByTriggers) {
        passed += count;
        if (passed >= needed) {
            return triggers;
        }
    }
    return 0;
}

void FleetSummary::keepWorstStorms() {
    std::ranges::sort(worstStorms, &Storm::comesBefore);
    if (worstStorms.size() > MOST_STORMS_NAMED) {
        worstStorms.erase(worstStorms.begin() + MOST_STORMS_NAMED, worstStorms.end());
    }
}

}  // namespace Brenta::OS::VIG::Tool
