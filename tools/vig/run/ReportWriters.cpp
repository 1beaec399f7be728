#include "tools/vig/run/ReportWriters.h"

#include <android/log.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kCyan = "\x1b[36m";
constexpr std::string_view kDim = "\x1b[2m";
constexpr std::string_view kPlain;

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

// It writes aligned lines for a person, with a summary at the end. Whatever comes from documents and events is shown
// without what a terminal would act on.
class TextReport final : public Report {
  public:
    TextReport(Output& output, bool withColours) : output(output), coloured(withColours) {}

    void trigger(const TriggerLine& line) override {
        row(line.event, "trigger", kBoldYellow, shown(line.machine), printable(line.name));
        std::string metadata;
        for (const std::string& entry : line.metadata) {
            metadata += (metadata.empty() ? "" : "  ") + printable(entry);
        }
        output.write(std::string(kDetailColumn, ' ') + inColour(kDim, metadata, coloured) + "\n");
        if (triggersByName.size() < kMostNames || triggersByName.contains(line.name)) {
            ++triggersByName[line.name];
        } else {
            ++otherTriggers;
        }
    }

    void log(const LogLine& line) override {
        std::string_view message = line.message;
        message = message.substr(0, message.find_last_not_of('\n') + 1);
        row(line.event, "log", line.priority >= ANDROID_LOG_ERROR ? kRed : kPlain, priorityName(line.priority),
            printable(line.tag) + ": " + indented(message));
    }

    void move(const MoveLine& line) override {
        row(line.event, "move", kCyan, shown(line.machine), shownName(line.from) + " -> " + shownName(line.to));
    }

    void delivery(const DeliveryLine& line) override {
        // The error message tells of a refusal.
        if (line.refusal.empty()) {
            output.write(fmt::format("{}: delivered again: {} configuration{}\n", printable(line.document),
                                     line.configurations, line.configurations == 1 ? "" : "s"));
        }
    }

    void explain(const Step& step) override {
        const std::vector<std::string> lines = explainLines(step);
        row(step.event, "explain", kDim, shown(step.machine), lines.front());
        for (std::size_t i = 1; i < lines.size(); ++i) {
            output.write(std::string(kDetailColumn, ' ') + lines[i] + "\n");
        }
    }

    void whyNot(const WhyNot& answer) override {
        output.write(headed ? "\nwhy not " : "why not ");
        headed = true;
        for (const std::string& line : whyNotLines(answer)) {
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
             std::string_view detail) {
        if (!std::exchange(headed, true)) {
            output.write(
                inColour(kDim, fmt::format("{:>9}  {:<7}  {:<14} {}", "event", "what", "who", "detail"), coloured) +
                "\n");
        }
        output.write(fmt::format("{:>9}  {}  {:<14} {}\n", event,
                                 inColour(colour, fmt::format("{:<7}", what), coloured), who,
                                 inColour(colour == kBoldYellow ? kBoldYellow : kPlain, detail, coloured)));
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
    const bool coloured;
    bool headed = false;
    std::map<std::string, std::uint64_t> triggersByName;  // bounded
    std::uint64_t otherTriggers = 0;
};

std::string jsonOf(const Summary::Machine& machine) {
    return fmt::format(R"({{"machine":{},"config_id":{},"payload_id":{},"state":{}}})", machine.name.index,
                       machine.name.configId, machine.payloadId, quoted(machine.state));
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
    JsonlReport(Output& output, const std::string& device)
        : output(output), lastKey(device.empty() ? "" : R"(,"device":)" + quoted(device)) {}

    void trigger(const TriggerLine& line) override {
        writeLine(fmt::format(
            R"({{"type":"trigger","event":{},"machine":{},"config_id":{},"trigger_name":{},"process_name":{},)"
            R"("metadata":{}}})",
            line.event, line.machine.index, line.machine.configId, quoted(line.name),
            line.processName ? quoted(*line.processName) : "null", jsonArray(line.metadata, quoted)));
    }

    void log(const LogLine& line) override {
        writeLine(fmt::format(R"({{"type":"log","event":{},"priority":"{}","tag":{},"message":{}}})", line.event,
                              priorityName(line.priority), quoted(line.tag), quoted(line.message)));
    }

    void move(const MoveLine& line) override {
        writeLine(fmt::format(R"({{"type":"move","event":{},"machine":{},"config_id":{},"from":{},"to":{}}})",
                              line.event, line.machine.index, line.machine.configId, quoted(line.from),
                              quoted(line.to)));
    }

    void delivery(const DeliveryLine& line) override {
        const std::string outcome = line.refusal.empty() ? fmt::format(R"("configurations":{})", line.configurations)
                                                         : fmt::format(R"("error":{})", quoted(line.refusal));
        writeLine(fmt::format(R"({{"type":"delivery","event":{},"rules":{},{}}})", line.event, quoted(line.document),
                              outcome));
    }

    void explain(const Step& step) override { writeLine(explainJson(step)); }

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
    const std::string lastKey;
};

}  // namespace

std::unique_ptr<Report> reportOf(ReportFormat format, Output& output, bool coloured, const std::string& device) {
    switch (format) {
        case ReportFormat::Text:
            return std::make_unique<TextReport>(output, coloured);
        case ReportFormat::Jsonl:
            return std::make_unique<JsonlReport>(output, device);
        case ReportFormat::Json:
        case ReportFormat::None:
            break;
    }
    return std::make_unique<NoReport>();
}

}  // namespace Brenta::OS::VIG::Tool
