#include "tools/vig/test/TestText.h"

#include <fmt/format.h>

#include <map>
#include <utility>

#include "tools/vig/words/PriorityName.h"
#include "tools/vig/words/Text.h"
#include "vig/ResponseProperty.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

void ExpectationWriter::trigger(const TriggerLine& line) {
    const std::string process =
        line.processName ? fmt::format(R"("process": {}, )", inQuotes(*line.processName)) : std::string();
    triggers.push_back(fmt::format(R"({{ "name": {}, {}"config": {}, "event": {} }})", inQuotes(line.name), process,
                                   line.machine.configId, line.event));
}

void ExpectationWriter::log(const LogLine& line) {
    if (line.message != kListeningMessage) {
        logs.push_back(fmt::format(R"({{ "message": {}, "priority": "{}" }})", inQuotes(line.message),
                                   priorityName(line.priority)));
    }
}

void ExpectationWriter::end(const Summary& summary) {
    std::map<std::int64_t, std::string> byId;  // of several machines with the same id, the first
    for (const Summary::Machine& each : summary.machines) {
        // A test cannot expect a name that is no UTF-8.
        if (replaceInvalidUtf8(std::string(each.state)) == each.state) {
            byId.emplace(each.name.configId, inQuotes(each.state));
        }
    }
    states = joined(byId, ", ", [](const auto& each) { return fmt::format(R"("{}": {})", each.first, each.second); });
}

std::vector<std::string> ExpectationWriter::lines() const {
    std::vector<std::string> all;
    for (const auto& [key, list] : {std::pair("triggers", &triggers), std::pair("log", &logs)}) {
        if (!list->empty()) {
            all.push_back(fmt::format(R"(  "{}": [)", key));
            for (const std::string& each : *list) {
                all.push_back("    " + each + (&each == &list->back() ? "" : ","));
            }
            all.push_back("  ],");
        }
    }
    if (!states.empty()) {
        all.push_back(fmt::format(R"(  "states": {{ {} }},)", states));
    }
    all.push_back(fmt::format(R"(  "moves": {})", moves));
    return all;
}

std::string textOf(const TestCase& test, const std::vector<std::string>& expected) {
    std::vector<std::string> events;
    for (const EventRecord& each : *test.events) {
        events.push_back("\n        " + jsonOf(each));
    }
    std::string text = fmt::format("    {{\n      \"name\": {},\n      \"events\": [{}{}],\n", inQuotes(test.name),
                                   fmt::join(events, ","), events.empty() ? "" : "\n      ");
    if (!test.draws.numbers.empty()) {
        text += fmt::format("      \"draws\": [{}],\n", fmt::join(test.draws.numbers, ", "));
    }
    if (test.context != AttributeSet()) {
        text += fmt::format("      \"context\": {},\n", jsonOf(test.context));
    }
    text += "      \"expect\": {\n";
    for (const std::string& line : expected) {
        text += "      " + line + "\n";
    }
    return text + "      }\n    }";
}

std::string testFileOf(const std::string& rules, const std::vector<std::string>& tests) {
    return fmt::format("{{\n  \"rules\": {},\n  \"tests\": [\n{}\n  ]\n}}\n", inQuotes(rules), fmt::join(tests, ",\n"));
}

std::string withTests(const DocumentText& file, const std::vector<std::string>& tests) {
    const Json::Value& root = file.root();
    const bool hasTests = root.isMember("tests");
    // A file without tests has properties.
    const Json::Value& list = root["tests"];
    const Json::Value& last = hasTests ? list[list.size() - 1] : root["properties"];
    const std::string& text = file.source().text();
    const std::size_t end = file.placeOf(last, {}).end;
    return fmt::format(fmt::runtime(hasTests ? "{},\n{}{}" : "{},\n  \"tests\": [\n{}\n  ]{}"), text.substr(0, end),
                       fmt::join(tests, ",\n"), text.substr(end));
}

}  // namespace Brenta::OS::VIG::Tool
