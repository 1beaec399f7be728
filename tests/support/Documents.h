#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace support {

// Rule documents as text, built from the inside out:
// document({config(7, {transition("start", "end", "Test")})}).

inline std::string joined(std::initializer_list<std::string> elements) {
    std::string text;
    for (const std::string& element : elements) {
        text += (text.empty() ? "" : ",") + element;
    }
    return text;
}

inline std::string operand(const std::string& type, const std::string& value) {
    return R"({"type":")" + type + R"(","value":")" + value + R"("})";
}

inline std::string filter(const std::string& op, const std::string& valueType, const std::string& operand1,
                          const std::string& operand2) {
    return R"({"operator":")" + op + R"(","value_type":")" + valueType + R"(","operand1":)" + operand1 +
           R"(,"operand2":)" + operand2 + "}";
}

// `filters` and `actions` are JSON arrays.
inline std::string transition(const std::string& from, const std::string& to, const std::string& event,
                              const std::string& filters = "[]", const std::string& actions = "[]") {
    return R"({"from_state":")" + from + R"(","to_state":")" + to + R"(","event":")" + event + R"(","filters":)" +
           filters + R"(,"actions":)" + actions + "}";
}

// The state-machine object alone.
inline std::string machine(std::initializer_list<std::string> transitions) {
    return R"({"transitions":[)" + joined(transitions) + "]}";
}

// Its payload has the id 1.
inline std::string config(std::int64_t id, std::initializer_list<std::string> transitions) {
    return R"({"id":)" + std::to_string(id) + R"(,"payload":{"id":1,"data":)" + machine(transitions) + "}}";
}

inline std::string document(std::initializer_list<std::string> configs) {
    return R"({"configs":[)" + joined(configs) + "]}";
}

// Logs every zram heartbeat and, the first time that a process has more than 2 GiB resident on a draw below
// 0.1, asks for a trigger and ends.
inline const std::string kCompleteDocument = document({config(
    7,
    {transition("start", "start", "ZramHeartBeat", "[]", R"([{"name":"LogZramHeartBeat"}])"),
     transition("start", "end", "ProcessMemoryHeartBeat",
                "[" + filter(">", "integer", operand("envvar", "vmRssKB"), operand("constant", "2097152")) + "," +
                    filter("<", "double", operand("function", "PseudoRandomDouble"), operand("constant", "0.1")) + "]",
                R"([{"name":"TriggerVelora"}])")})});

}  // namespace support
