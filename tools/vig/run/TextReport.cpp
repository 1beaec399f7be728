#include "tools/vig/run/TextReport.h"

#include <android/log.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kBoldYellow = "\x1b[1;33m";
constexpr std::string_view kCyan = "\x1b[36m";
constexpr std::string_view kDim = "\x1b[2m";
constexpr std::string_view kPlain;
constexpr std::string_view kReset = "\x1b[0m";

constexpr std::size_t kDetailColumn = 35;
constexpr std::size_t kMostNames = 1000;  // of triggers that are counted apart
constexpr std::size_t kMostNamesShown = 20;

std::string shown(const MachineName& machine) {
    return fmt::format("{} (id {})", machine.index, machine.configId);
}

// A log message may have several lines. None may look like a row of the report.
std::string indented(std::string_view message) {
    const std::vector<std::string> lines = printableLines(message);
    std::string text = lines.front();
    for (std::size_t i = 1; i < lines.size(); ++i) {
        text += "\n" + std::string(kDetailColumn, ' ') + lines[i];
    }
    return text;
}

}  // namespace

void TextReport::trigger(const TriggerLine& line) {
    row(line.event, "trigger", kBoldYellow, shown(line.machine), printable(line.name));
    std::string metadata;
    for (const std::string& entry : line.metadata) {
        metadata += (metadata.empty() ? "" : "  ") + printable(entry);
    }
    output.write(std::string(kDetailColumn, ' ') + inColour(kDim, metadata) + "\n");
    if (triggersByName.size() < kMostNames || triggersByName.contains(line.name)) {
        ++triggersByName[line.name];
    } else {
        ++otherTriggers;
    }
}

void TextReport::log(const LogLine& line) {
    std::string_view message = line.message;
    message = message.substr(0, message.find_last_not_of('\n') + 1);
    row(line.event, "log", line.priority >= ANDROID_LOG_ERROR ? kRed : kPlain, priorityName(line.priority),
        printable(line.tag) + ": " + indented(message));
}

void TextReport::move(const MoveLine& line) {
    row(line.event, "move", kCyan, shown(line.machine), shownName(line.from) + " -> " + shownName(line.to));
}

void TextReport::delivery(const DeliveryLine& line) {
    // Of a refusal, the error message tells.
    if (line.refusal.empty()) {
        output.write(fmt::format("{}: delivered again: {} configuration{}\n", printable(line.document),
                                 line.configurations, line.configurations == 1 ? "" : "s"));
    }
}

void TextReport::explain(const Step& step) {
    const std::vector<std::string> lines = explainLines(step);
    row(step.event, "explain", kDim, shown(step.machine), lines.front());
    for (std::size_t i = 1; i < lines.size(); ++i) {
        output.write(std::string(kDetailColumn, ' ') + lines[i] + "\n");
    }
}

void TextReport::whyNot(const WhyNot& answer) {
    output.write(headed ? "\nwhy not " : "why not ");
    headed = true;
    for (const std::string& line : whyNotLines(answer)) {
        output.write(line + "\n");
    }
}

void TextReport::end(const Summary& summary) {
    output.write(headed ? "\nsummary\n" : "summary\n");
    if (summary.sampling) {
        output.write(fmt::format("  {:<9} {}\n", "samples", summary.sampling->samples));
    }
    output.write(fmt::format("  {:<9} {}\n", "events", summary.events));
    if (summary.sampling) {
        for (const auto& [type, count] : summary.sampling->eventsByType) {
            output.write(fmt::format("  {:>9} {}\n", count, nameOf(type)));
        }
    }
    output.write(fmt::format("  {:<9} {}\n", "triggers", summary.triggers));
    writeTriggerCounts();
    for (const Summary::Machine& machine : summary.machines) {
        output.write(fmt::format("  {:<9} {}  config id {}  payload id {}  in state {}\n", "machine",
                                 machine.name.index, machine.name.configId, machine.payloadId,
                                 shownName(machine.state)));
    }
}

std::string TextReport::inColour(std::string_view colour, std::string_view text) const {
    return coloured && !colour.empty() ? fmt::format("{}{}{}", colour, text, kReset) : std::string(text);
}

void TextReport::row(std::uint64_t event, std::string_view what, std::string_view colour, std::string_view who,
                     std::string_view detail) {
    if (!std::exchange(headed, true)) {
        output.write(inColour(kDim, fmt::format("{:>9}  {:<7}  {:<14} {}", "event", "what", "who", "detail")) + "\n");
    }
    output.write(fmt::format("{:>9}  {}  {:<14} {}\n", event, inColour(colour, fmt::format("{:<7}", what)), who,
                             inColour(colour == kBoldYellow ? kBoldYellow : kPlain, detail)));
}

// The most frequent ones first.
void TextReport::writeTriggerCounts() {
    std::vector<std::pair<std::string_view, std::uint64_t>> counts(triggersByName.begin(), triggersByName.end());
    std::ranges::stable_sort(counts, std::greater(), [](const auto& each) { return each.second; });
    for (std::size_t i = 0; i < std::min(counts.size(), kMostNamesShown); ++i) {
        output.write(fmt::format("  {:>9} {}\n", counts[i].second, printable(counts[i].first)));
    }
    std::uint64_t rest = otherTriggers;
    for (std::size_t i = kMostNamesShown; i < counts.size(); ++i) {
        rest += counts[i].second;
    }
    if (rest > 0) {
        output.write(fmt::format("  {:>9} of other names\n", rest));
    }
}

}  // namespace Brenta::OS::VIG::Tool
