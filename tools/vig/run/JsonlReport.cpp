#include "tools/vig/run/JsonlReport.h"

#include <fmt/format.h>

#include <string>

#include "tools/vig/events/EventNames.h"
#include "tools/vig/trace/ExplainText.h"
#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string list(const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries) {
        text += text.empty() ? "" : ",";
        appendJsonString(text, entry);
    }
    return fmt::format("[{}]", text);
}

std::string machinesOf(const Summary& summary) {
    std::string text;
    for (const Summary::Machine& machine : summary.machines) {
        text += fmt::format(R"({}{{"machine":{},"config_id":{},"payload_id":{},"state":{}}})", text.empty() ? "" : ",",
                            machine.name.index, machine.name.configId, machine.payloadId, quoted(machine.state));
    }
    return fmt::format("[{}]", text);
}

std::string samplingOf(const Summary::Sampling& sampling) {
    std::string text;
    for (const auto& [type, count] : sampling.eventsByType) {
        text += fmt::format(R"({}"{}":{})", text.empty() ? "" : ",", nameOf(type), count);
    }
    return fmt::format(R"(,"samples":{},"events_by_type":{{{}}})", sampling.samples, text);
}

}  // namespace

JsonlReport::JsonlReport(Output& target, const std::string& device)
    : output(target), lastKey(device.empty() ? "" : R"(,"device":)" + quoted(device)) {}

void JsonlReport::writeLine(std::string object) {
    object.insert(object.size() - 1, lastKey);
    output.write(object += "\n");
}

void JsonlReport::trigger(const TriggerLine& line) {
    writeLine(
        fmt::format(R"({{"type":"trigger","event":{},"machine":{},"config_id":{},"trigger_name":{},"process_name":{},)"
                    R"("metadata":{}}})",
                    line.event, line.machine.index, line.machine.configId, quoted(line.name),
                    line.processName ? quoted(*line.processName) : "null", list(line.metadata)));
}

void JsonlReport::log(const LogLine& line) {
    writeLine(fmt::format(R"({{"type":"log","event":{},"priority":"{}","tag":{},"message":{}}})", line.event,
                          priorityName(line.priority), quoted(line.tag), quoted(line.message)));
}

void JsonlReport::move(const MoveLine& line) {
    writeLine(fmt::format(R"({{"type":"move","event":{},"machine":{},"config_id":{},"from":{},"to":{}}})", line.event,
                          line.machine.index, line.machine.configId, quoted(line.from), quoted(line.to)));
}

void JsonlReport::delivery(const DeliveryLine& line) {
    const std::string outcome = line.refusal.empty() ? fmt::format(R"("configurations":{})", line.configurations)
                                                     : fmt::format(R"("error":{})", quoted(line.refusal));
    writeLine(
        fmt::format(R"({{"type":"delivery","event":{},"rules":{},{}}})", line.event, quoted(line.document), outcome));
}

void JsonlReport::explain(const Step& step) {
    writeLine(explainJson(step));
}

void JsonlReport::whyNot(const WhyNot& answer) {
    writeLine(whyNotJson(answer));
}

void JsonlReport::end(const Summary& summary) {
    writeLine(fmt::format(R"({{"type":"end","events":{},"triggers":{},"machines":{}{}}})", summary.events,
                          summary.triggers, machinesOf(summary),
                          summary.sampling ? samplingOf(*summary.sampling) : ""));
}

}  // namespace Brenta::OS::VIG::Tool
