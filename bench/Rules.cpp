#include "bench/Rules.h"

#include <fmt/format.h>

#include <array>

namespace bench {

namespace {

struct Comparison {
    const char* attribute;
    const char* op;
    const char* constant;
    const char* falseConstant;
};

constexpr std::array<std::array<Comparison, 3>, 3> kComparisons = {{
    {{{"vmRssKB", ">", "200000", "300000"}, {"vmSwapKB", "<=", "4096", "0"}, {"pid", "!=", "1", "4711"}}},
    {{{"growth", ">", "1.1", "1.5"}, {"share", "<=", "0.75", "0.25"}, {"pressure", "!=", "1.0", "0.125"}}},
    {{{"processName", "==", "com.example.camera", "com.example.player"},
      {"package", "!=", "com.example.tools", "com.example"},
      {"state", "<=", "foreground", "background"}}},
}};

std::string filter(const char* type, const Condition& condition) {
    return fmt::format(R"({{"operator":"{}","value_type":"{}","operand1":{{"type":"envvar","value":"{}"}},)"
                       R"("operand2":{{"type":"constant","value":"{}"}}}})",
                       condition.op, type, condition.attribute, condition.constant);
}

std::string transition(const std::string& from, const std::string& to, const char* event, const std::string& filters,
                       const char* action) {
    return fmt::format(R"({{"from_state":"{}","to_state":"{}","event":"{}","filters":[{}],"actions":[{}]}})", from, to,
                       event, filters, action);
}

std::string config(std::size_t id, const std::string& transitions) {
    return fmt::format(R"({{"id":{},"payload":{{"id":1,"data":{{"transitions":[{}]}}}}}})", id, transitions);
}

}  // namespace

std::vector<Condition> conditions(Kind kind, std::size_t count, bool lastIsFalse) {
    std::vector<Condition> result;
    for (std::size_t i = 0; i < count; ++i) {
        const Comparison& each = kComparisons[static_cast<std::size_t>(kind)][i % 3];
        result.push_back({each.attribute, each.op, lastIsFalse && i + 1 == count ? each.falseConstant : each.constant});
    }
    return result;
}

std::string document(Kind kind, const std::vector<Condition>& all) {
    constexpr std::array kTypes = {"integer", "double", "string"};
    std::string filters;
    for (const Condition& condition : all) {
        filters += (filters.empty() ? "" : ",") + filter(kTypes[static_cast<std::size_t>(kind)], condition);
    }
    return R"({"configs":[)" + config(1, transition("start", "start", "ProcessMemoryHeartBeat", filters, "")) + "]}";
}

std::string documentOf(std::size_t configurations) {
    std::string text = R"({"configs":[)";
    for (std::size_t i = 0; i < configurations; ++i) {
        const std::string name = filter("string", {"processName", "==", "com.example.camera"});
        const std::string size = filter("integer", {"vmRssKB", ">", "200000"});
        text += i == 0 ? "" : ",";
        text +=
            config(i, transition("start", "watching", "ProcessMemoryHeartBeat", name + "," + size, "") + "," +
                          transition("watching", "end", "ProcessMemoryHeartBeat", name + "," + size,
                                     R"({"name":"TriggerVelora"})") +
                          "," + transition("watching", "start", "ZramHeartBeat", "", R"({"name":"LogZramHeartBeat"})"));
    }
    return text + "]}";
}

}  // namespace bench
