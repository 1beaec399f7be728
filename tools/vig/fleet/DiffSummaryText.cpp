#include "tools/vig/fleet/DiffSummary.h"

#include <fmt/format.h>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::array<std::string_view, kDeviceChangeNames.size()> kHeads = {"newly",     "no longer", "more", "less",
                                                                            "otherwise", "logs",      "same"};

std::string row(const DiffSummary::Count& count, const std::string& what) {
    return fmt::format("{} {:>9} {:>9}  {}\n",
                       joined(count.devices, "", [](std::uint64_t each) { return fmt::format(" {:>9}", each); }),
                       count.triggers[kOld], count.triggers[kNew], what);
}

std::string placeOf(const DiffSummary::Machine& machine) {
    const std::string& old = machine.paths[kOld];
    const std::string& now = machine.paths[kNew];
    const std::string place = now.empty()   ? old + ", gone"
                              : old.empty() ? now + ", new"
                              : old == now  ? old
                                            : old + " -> " + now;
    return fmt::format("id {} ({})", machine.id, printable(place));
}

std::string jsonOf(const Both<std::uint64_t>& numbers) {
    return fmt::format(R"({{"old":{},"new":{}}})", numbers[kOld], numbers[kNew]);
}

std::string jsonOf(const DiffSummary::Count& count) {
    std::size_t change = 0;
    return fmt::format(R"("triggers":{},"changes":{{{}}})", jsonOf(count.triggers),
                       joined(count.devices, ",", [&change](std::uint64_t each) {
                           return fmt::format(R"("{}":{})", kDeviceChangeNames[change++], each);
                       }));
}

std::string jsonOf(const DiffSummary::Example& example) {
    return fmt::format(R"({{"change":"{}","device":{},"triggers":{},"event":{}}})",
                       kDeviceChangeNames[static_cast<std::size_t>(example.change)], inQuotes(example.device),
                       jsonOf(example.triggers), example.event);
}

std::string jsonOf(const DiffSummary::Machine& machine) {
    const auto path = [&](std::size_t side) {
        return machine.paths[side].empty() ? "null" : inQuotes(machine.paths[side]);
    };
    return fmt::format(R"({{"id":{},"old":{},"new":{},{}}})", machine.id, path(kOld), path(kNew),
                       jsonOf(machine.count));
}

}  // namespace

std::string textOf(const DiffSummary& summary) {
    std::string text = "fleet\n";
    const auto add = [&text](const char* name, std::uint64_t value) {
        text += fmt::format("  {:<9} {}\n", name, value);
    };
    add("devices", summary.devices());
    if (summary.failed > 0) {
        add("failed", summary.failed);
    }
    if (summary.unfinished > 0) {
        add("unfinished", summary.unfinished);
    }
    add("events", summary.events);
    for (const DiffSummary::Example& each : summary.examples) {
        text += fmt::format("  {:<9} {}: {} -> {} triggers, from event {} on\n",
                            kHeads[static_cast<std::size_t>(each.change)], printable(each.device), each.triggers[kOld],
                            each.triggers[kNew], each.event);
    }
    const auto column = [](std::string_view each) { return fmt::format(" {:>9}", each); };
    text += fmt::format(" {:>9}{:>69}\n", "devices", "triggers");
    text += joined(kHeads, "", column) + column("old") + column("new") + "\n";
    text += row(summary.all, "all machines");
    for (const DiffSummary::Machine& each : summary.machines) {
        text += row(each.count, placeOf(each));
    }
    return text;
}

std::string jsonOf(const DiffSummary& summary, const std::string& first) {
    return fmt::format(R"({{{}"old":{},"new":{},"devices":{},"failed":{},"unfinished":{},"events":{},{},)"
                       R"("examples":{},"machines":{}}})"
                       "\n",
                       first, inQuotes(summary.documentHashes[kOld]), inQuotes(summary.documentHashes[kNew]),
                       summary.devices(), summary.failed, summary.unfinished, summary.events, jsonOf(summary.all),
                       jsonArray(summary.examples, [](const auto& each) { return jsonOf(each); }),
                       jsonArray(summary.machines, [](const auto& each) { return jsonOf(each); }));
}

}  // namespace Brenta::OS::VIG::Tool
