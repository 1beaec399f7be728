#include "tools/vig/fleet/FleetSummary.h"

#include <fmt/format.h>

#include <utility>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string jsonOf(const FleetSummary::Count& count) {
    return fmt::format(R"("devices":{},"fired":{})", count.devices, count.fired);
}

std::string jsonOf(const FleetSummary::Transition& transition) {
    return fmt::format(R"({{"path":{},"from":{},"to":{},"event":{},{}}})", inQuotes(transition.path),
                       inQuotes(transition.from), inQuotes(transition.to), inQuotes(transition.event),
                       jsonOf(transition.count));
}

std::string jsonOf(const FleetSummary::Storm& storm) {
    return fmt::format(R"({{"device":{},"triggers":{},"events":{}}})", inQuotes(storm.device), storm.triggers,
                       storm.events);
}

std::string jsonOf(const std::pair<const std::uint64_t, std::uint64_t>& devicesOfTriggers) {
    return fmt::format(R"({{"triggers":{},"devices":{}}})", devicesOfTriggers.first, devicesOfTriggers.second);
}

std::string jsonOf(const FleetSummary::Config& config);

constexpr auto kToJson = [](const auto& element) { return jsonOf(element); };

std::string jsonOf(const FleetSummary::Config& config) {
    return fmt::format(R"({{"path":{},"id":{},{},"transitions":{}}})", inQuotes(config.path), config.id,
                       jsonOf(config.count), jsonArray(config.transitions, kToJson));
}

std::string triggersOf(const FleetSummary& summary) {
    return fmt::format(R"({{"total":{},"median":{},"p99":{},"most":{},"by_count":{}}})", summary.triggers(),
                       summary.percentile(50), summary.percentile(99), summary.percentile(100),
                       jsonArray(summary.devicesByTriggers, kToJson));
}

std::string countRow(const FleetSummary::Count& count, const std::string& what) {
    return fmt::format("  {:>9} on {:>9}  {}\n", count.fired, count.devices, printable(what));
}

}  // namespace

std::string textOf(const FleetSummary& summary) {
    std::string text = "fleet\n";
    const auto add = [&text](const char* name, const auto& value) { text += fmt::format("  {:<9} {}\n", name, value); };
    add("devices", summary.devices());
    if (summary.failed > 0) {
        add("failed", summary.failed);
    }
    if (summary.unfinished > 0) {
        add("unfinished", summary.unfinished);
    }
    add("events", summary.events);
    add("triggers", fmt::format("{} (a device: median {}, 99th percentile {}, most {})", summary.triggers(),
                                summary.percentile(50), summary.percentile(99), summary.percentile(100)));
    add("storms", summary.stormyDevices);
    for (const FleetSummary::Storm& each : summary.worstStorms) {
        text += fmt::format("  {:>9} triggers in {} events: {}\n", each.triggers, each.events, printable(each.device));
    }
    text += fmt::format("  {:>9}    {:>9}\n", "fired", "devices");
    for (const FleetSummary::Config& config : summary.configs) {
        text += countRow(config.count, fmt::format("{} (id {})", config.path, config.id));
        for (const FleetSummary::Transition& each : config.transitions) {
            text +=
                countRow(each.count, fmt::format("  {}  {} -> {} on {}", each.path, each.from, each.to, each.event));
        }
    }
    return text;
}

std::string jsonOf(const FleetSummary& summary, const std::string& first) {
    return fmt::format(R"({{{}"document":{},"devices":{},"failed":{},"unfinished":{},"events":{},"triggers":{},)"
                       R"("storms":{{"devices":{},"worst":{}}},"configs":{}}})"
                       "\n",
                       first, inQuotes(summary.documentHash), summary.devices(), summary.failed, summary.unfinished,
                       summary.events, triggersOf(summary), summary.stormyDevices,
                       jsonArray(summary.worstStorms, kToJson), jsonArray(summary.configs, kToJson));
}

}  // namespace Brenta::OS::VIG::Tool
