#include "tools/vig/fleet/Parting.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Wrapped.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostLines = 50;  // a cycle of EnteringState transitions makes a thousand steps
constexpr std::size_t kIndent = 11;     // of an explanation

constexpr std::array<std::string_view, kDeviceChangeNames.size()> kSentences = {"triggers newly",
                                                                                "triggers no longer",
                                                                                "triggers more",
                                                                                "triggers less",
                                                                                "triggers otherwise",
                                                                                "logs otherwise",
                                                                                ""};

// Appends the lines, or the first of very many.
void append(std::vector<std::string>& all, std::vector<std::string> lines) {
    if (lines.size() > kMostLines) {
        const std::size_t more = lines.size() - kMostLines;
        lines.resize(kMostLines);
        lines.push_back(fmt::format("and {} more lines", more));
    }
    std::ranges::move(lines, std::back_inserter(all));
}

std::vector<std::string> linesOf(const Doings& doings) {
    if (doings.isEmpty()) {
        return {"nothing"};
    }
    std::vector<std::string> lines;
    for (const Doings::Trigger& each : doings.triggers) {
        lines.push_back("trigger " + printable(each.name));
        lines.push_back("  " + joined(each.metadata, "  ", printable));
    }
    for (const Doings::Log& each : doings.logs) {
        std::string start = fmt::format("log {} {}: ", priorityName(each.priority), printable(each.tag));
        for (const std::string& line : printableLines(each.message)) {
            lines.push_back(std::exchange(start, "  ") + line);
        }
    }
    return lines;
}

std::vector<std::string> linesOf(const std::vector<Step>& steps) {
    std::vector<std::string> lines;
    ExplainText text(kColumns - kIndent);
    for (const Step& step : steps) {
        for (const std::string& line : text.linesOf(step)) {
            lines.push_back("  " + line);
        }
    }
    return lines;
}

// Lists what one machine did, with the explanation below.
std::vector<std::string> linesOf(const Parting::Machine& machine, std::size_t side) {
    if (!machine.pair->index[side]) {
        return {"has no such machine"};
    }
    std::vector<std::string> lines;
    append(lines, linesOf(machine.doings[side]));
    append(lines, linesOf(machine.steps[side]));
    return lines;
}

std::string jsonOf(const Doings::Trigger& trigger) {
    return fmt::format(R"({{"trigger_name":{},"process_name":{},"metadata":{}}})", inQuotes(trigger.name),
                       trigger.processName ? inQuotes(*trigger.processName) : "null",
                       jsonArray(trigger.metadata, inQuotes));
}

std::string jsonOf(const Doings::Log& log) {
    return fmt::format(R"({{"priority":"{}","tag":{},"message":{}}})", priorityName(log.priority), inQuotes(log.tag),
                       inQuotes(log.message));
}

std::string jsonOf(const Parting::Machine& machine, std::size_t side) {
    if (!machine.pair->index[side]) {
        return "null";
    }
    const auto toJson = [](const auto& each) { return jsonOf(each); };
    return fmt::format(R"({{"machine":{},"triggers":{},"logs":{},"explanation":{}}})", *machine.pair->index[side],
                       jsonArray(machine.doings[side].triggers, toJson), jsonArray(machine.doings[side].logs, toJson),
                       jsonArray(machine.steps[side], explainJson));
}

std::string jsonOf(const Parting::Machine& machine) {
    return fmt::format(R"({{"config_id":{},"old":{},"new":{}}})", machine.pair->id, jsonOf(machine, kOld),
                       jsonOf(machine, kNew));
}

}  // namespace

std::string textOf(const DeviceDiff& diff, const Parting& parting) {
    const BothDid did = diff.all();
    std::string text =
        fmt::format("{}: {} -> {}; the first difference is event {}{}\n",
                    kSentences[static_cast<std::size_t>(did.change())], did.triggers[kOld], did.triggers[kNew],
                    parting.event, parting.timeMs ? fmt::format(" at {} ms", *parting.timeMs) : "");
    for (const Parting::Machine& machine : parting.machines) {
        text += fmt::format("  id {}\n", machine.pair->id);
        for (const std::size_t side : {kOld, kNew}) {
            std::string_view first = kSides[side];
            for (const std::string& line : linesOf(machine, side)) {
                text += fmt::format("    {:<5}{}\n", std::exchange(first, ""), line);
            }
        }
    }
    return text;
}

std::string jsonOf(const DeviceDiff& diff, const Parting& parting) {
    const BothDid did = diff.all();
    return fmt::format(R"({{"type":"device","device":{},"change":"{}","triggers":{{"old":{},"new":{}}},"event":{},)"
                       R"("time_ms":{},"machines":{}}})"
                       "\n",
                       inQuotes(diff.device), kDeviceChangeNames[static_cast<std::size_t>(did.change())],
                       did.triggers[kOld], did.triggers[kNew], parting.event,
                       parting.timeMs ? fmt::format("{}", *parting.timeMs) : "null",
                       jsonArray(parting.machines, [](const auto& each) { return jsonOf(each); }));
}

}  // namespace Brenta::OS::VIG::Tool
