#include "tools/vig/run/ReportWriters.h"

#include <android/log.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"
#include "tools/vig/words/Wrapped.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kCyan = "\x1b[36m";
constexpr std::string_view kDim = "\x1b[2m";
constexpr std::string_view kPlain;

constexpr std::size_t kWhatColumn = 11;  // what belongs to a row stands below it from here on
constexpr std::size_t kWhatWidth = 7;
constexpr std::size_t kExplainColumn = 9;
constexpr std::size_t kMostNames = 1000;  // of triggers that are counted apart
constexpr std::size_t kMostNamesShown = 20;

std::string shown(const MachineName& machine) {
    return fmt::format("{} (id {})", machine.index, machine.configId);
}

bool tells(const ReportStyle& style, std::size_t machine) {
    return style.selection == nullptr || style.selection->has(machine);
}

// What no machine logged is not of an event, and so not chosen among them.
bool tells(const ReportStyle& style, const LogLine& line) {
    return !line.machine || tells(style, *line.machine);
}

// It writes aligned lines for a person, with a summary at the end. Whatever comes from documents and events is shown
// without what a terminal would act on.
class TextReport final : public Report {
  public:
    TextReport(Output& output, const ReportStyle& style) : output(output), style(style) {}

    void trigger(const TriggerLine& line) override {
        if (tells(style, line.machine.index)) {
            row(line.event, "trigger", kBoldYellow, shown(line.machine), {printable(line.name)});
            for (const std::string& each : wrapped(joined(line.metadata, "  ", printable), kColumns - kWhatColumn, 0)) {
                output.write(std::string(kWhatColumn, ' ') + inColour(kDim, each, style.coloured) + "\n");
            }
        }
        if (triggersByName.size() < kMostNames || triggersByName.contains(line.name)) {
            ++triggersByName[line.name];
        } else {
            ++otherTriggers;
        }
    }

    void log(const LogLine& line) override {
        if (!tells(style, line) || (!line.machine && !style.verbose)) {
            return;
        }
        std::string_view message = line.message;
        message = message.substr(0, message.find_last_not_of('\n') + 1);
        // A message may have several lines, and none may look like a row of the report.
        std::vector<std::string> lines = printableLines(message);
        lines.front() = printable(line.tag) + ": " + lines.front();
        row(line.event, "log", line.priority >= ANDROID_LOG_ERROR ? kRed : kPlain, priorityName(line.priority), lines);
    }

    void move(const MoveLine& line) override {
        if (tells(style, line.machine.index)) {
            row(line.event, "move", kCyan, shown(line.machine), {shownName(line.from) + " -> " + shownName(line.to)});
        }
    }

    void delivery(const DeliveryLine& line) override {
        // The error message tells of a refusal.
        if (line.refusal.empty()) {
            output.write(fmt::format("{}: delivered again: {} configuration{}\n", printable(line.document),
                                     line.configurations, line.configurations == 1 ? "" : "s"));
        }
    }

    void explain(const Step& step) override {
        const std::vector<std::string> lines = explanations.linesOf(step);
        row(step.event, "explain", kDim, shown(step.machine), {lines.front()});
        for (std::size_t i = 1; i < lines.size(); ++i) {
            output.write(std::string(kExplainColumn, ' ') + lines[i] + "\n");
        }
    }

    void explained(std::uint64_t events, std::uint64_t of) override {
        if (events == of) {
            return;
        }
        const std::string what = events == 0
                                     ? fmt::format("in none of {} events did a transition fire or come near", of)
                                     : fmt::format(
                                           "explained {} of {} events, in which a transition fired, or came nearer to "
                                           "firing than before",
                                           events, of);
        output.write(headed ? "\n" : "");
        headed = true;
        for (const std::string& line : wrapped(what + "; --explain=all explains all", kColumns, 0)) {
            output.write(line + "\n");
        }
    }

    void whyNot(const WhyNot& answer) override {
        output.write(headed ? "\nwhy not " : "why not ");
        headed = true;
        ExplainText text(kColumns);
        for (const std::string& line : text.linesOf(answer)) {
            output.write(line + "\n");
        }
    }

    void end(const Summary& summary) override {
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

  private:
    void row(std::uint64_t event, std::string_view what, std::string_view colour, std::string_view who,
             const std::vector<std::string>& details) {
        if (!std::exchange(headed, true)) {
            output.write(inColour(kDim, fmt::format("{:>9}  {:<7}  {:<14} {}", "event", "what", "who", "detail"),
                                  style.coloured) +
                         "\n");
        }
        const std::string start = fmt::format("{:>9}  ", event);
        const std::string rest = fmt::format("  {:<14} ", who);
        const std::size_t column = start.size() + kWhatWidth + rest.size();
        std::vector<std::string> lines = allWrapped(details, kColumns - column);
        const bool isTooLong =
            std::ranges::any_of(lines, [&](const auto& each) { return column + charactersIn(each) > kColumns; });
        std::string indent(column, ' ');
        if (isTooLong) {
            indent.resize(kWhatColumn);
            lines = allWrapped(details, kColumns - kWhatColumn);
            lines.insert(lines.begin(), "");
        }
        std::string before = start + inColour(colour, fmt::format("{:<{}}", what, kWhatWidth), style.coloured) + rest;
        for (const std::string& each : lines) {
            before.resize(each.empty() ? before.find_last_not_of(' ') + 1 : before.size());
            output.write(before + inColour(colour == kBoldYellow ? kBoldYellow : kPlain, each, style.coloured) + "\n");
            before = indent;
        }
    }

    static std::vector<std::string> allWrapped(const std::vector<std::string>& lines, std::size_t columns) {
        std::vector<std::string> all;
        for (const std::string& each : lines) {
            std::ranges::move(wrapped(each, columns, 0), std::back_inserter(all));
        }
        return all;
    }

    // The most frequent ones come first.
    void writeTriggerCounts() {
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

    Output& output;
    const ReportStyle style;
    ExplainText explanations{kColumns - kExplainColumn};
    bool headed = false;
    std::map<std::string, std::uint64_t> triggersByName;  // bounded
    std::uint64_t otherTriggers = 0;
};

std::string jsonOf(const Summary::Machine& machine) {
    return fmt::format(R"({{"machine":{},"config_id":{},"payload_id":{},"state":{}}})", machine.name.index,
                       machine.name.configId, machine.payloadId, inQuotes(machine.state));
}

std::string jsonOf(const Summary::Sampling& sampling) {
    return fmt::format(R"(,"samples":{},"events_by_type":{{{}}})", sampling.samples,
                       joined(sampling.eventsByType, ",", [](const auto& each) {
                           return fmt::format(R"("{}":{})", nameOf(each.first), each.second);
                       }));
}

// It writes one JSON object a line, for programs. The shapes and the order of their keys are fixed: what is new comes
// last.
class JsonlReport final : public Report {
  public:
    JsonlReport(Output& output, const ReportStyle& style)
        : output(output), style(style), lastKey(style.device.empty() ? "" : R"(,"device":)" + inQuotes(style.device)) {}

    void trigger(const TriggerLine& line) override {
        if (!tells(style, line.machine.index)) {
            return;
        }
        writeLine(fmt::format(
            R"({{"type":"trigger","event":{},"machine":{},"config_id":{},"trigger_name":{},"process_name":{},)"
            R"("metadata":{}}})",
            line.event, line.machine.index, line.machine.configId, inQuotes(line.name),
            line.processName ? inQuotes(*line.processName) : "null", jsonArray(line.metadata, inQuotes)));
    }

    void log(const LogLine& line) override {
        if (!tells(style, line)) {
            return;
        }
        writeLine(fmt::format(R"({{"type":"log","event":{},"priority":"{}","tag":{},"message":{}}})", line.event,
                              priorityName(line.priority), inQuotes(line.tag), inQuotes(line.message)));
    }

    void move(const MoveLine& line) override {
        if (!tells(style, line.machine.index)) {
            return;
        }
        writeLine(fmt::format(R"({{"type":"move","event":{},"machine":{},"config_id":{},"from":{},"to":{}}})",
                              line.event, line.machine.index, line.machine.configId, inQuotes(line.from),
                              inQuotes(line.to)));
    }

    void delivery(const DeliveryLine& line) override {
        const std::string outcome = line.refusal.empty() ? fmt::format(R"("configurations":{})", line.configurations)
                                                         : fmt::format(R"("error":{})", inQuotes(line.refusal));
        writeLine(fmt::format(R"({{"type":"delivery","event":{},"rules":{},{}}})", line.event, inQuotes(line.document),
                              outcome));
    }

    void explain(const Step& step) override { writeLine(explainJson(step)); }

    void explained(std::uint64_t /*events*/, std::uint64_t /*of*/) override {}

    void whyNot(const WhyNot& answer) override { writeLine(whyNotJson(answer)); }

    void end(const Summary& summary) override {
        writeLine(fmt::format(R"({{"type":"end","events":{},"triggers":{},"machines":{}{}}})", summary.events,
                              summary.triggers,
                              jsonArray(summary.machines, [](const auto& each) { return jsonOf(each); }),
                              summary.sampling ? jsonOf(*summary.sampling) : ""));
    }

  private:
    void writeLine(std::string object) {
        object.insert(object.size() - 1, lastKey);
        output.write(object += "\n");
    }

    Output& output;
    const ReportStyle style;
    const std::string lastKey;
};

}  // namespace

std::unique_ptr<Report> reportOf(const ReportStyle& style, Output& output) {
    switch (style.format) {
        case ReportFormat::Text:
            return std::make_unique<TextReport>(output, style);
        case ReportFormat::Jsonl:
            return std::make_unique<JsonlReport>(output, style);
        case ReportFormat::Json:
        case ReportFormat::Html:
        case ReportFormat::None:
            break;
    }
    return std::make_unique<NoReport>();
}

}  // namespace Brenta::OS::VIG::Tool
