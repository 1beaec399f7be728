#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace support {

// Rule documents as text, built from the inside out:
// document({config(7, {transition("start", "end", "Test")})}).

inline std::string joined(const std::vector<std::string>& elements) {
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

// A JSON array of filters such as "integer vmRssKB > =10": "name()" is a function, "=text" a constant, and all else an
// attribute.
inline std::string filters(const std::vector<std::string>& conditions) {
    const auto operandOf = [](const std::string& term) {
        return term.starts_with('=')  ? operand("constant", term.substr(1))
               : term.ends_with("()") ? operand("function", term.substr(0, term.size() - 2))
                                      : operand("envvar", term);
    };
    std::vector<std::string> all;
    for (const std::string& condition : conditions) {
        std::istringstream words(condition);
        std::string type, left, op, right;
        words >> type >> left >> op;
        std::getline(words.ignore(), right);
        all.push_back(filter(op, type, operandOf(left), operandOf(right)));
    }
    return "[" + joined(all) + "]";
}

// `filters` and `actions` are JSON arrays.
inline std::string transition(const std::string& from, const std::string& to, const std::string& event,
                              const std::string& filters = "[]", const std::string& actions = "[]") {
    return R"({"from_state":")" + from + R"(","to_state":")" + to + R"(","event":")" + event + R"(","filters":)" +
           filters + R"(,"actions":)" + actions + "}";
}

// The state-machine object alone.
inline std::string machine(const std::vector<std::string>& transitions) {
    return R"({"transitions":[)" + joined(transitions) + "]}";
}

// Its payload has the id 1.
inline std::string config(std::int64_t id, const std::vector<std::string>& transitions) {
    return R"({"id":)" + std::to_string(id) + R"(,"payload":{"id":1,"data":)" + machine(transitions) + "}}";
}

inline std::string document(const std::vector<std::string>& configs) {
    return R"({"configs":[)" + joined(configs) + "]}";
}

// The document has one configuration, of the id 7.
inline std::string documentOf(const std::vector<std::string>& transitions) {
    return document({config(7, transitions)});
}

// Logs every zram heartbeat and, the first time that a process has more than 2 GiB resident on a draw below
// 0.1, asks for a trigger and ends.
inline const std::string kCompleteDocument =
    documentOf({transition("start", "start", "ZramHeartBeat", "[]", R"([{"name":"LogZramHeartBeat"}])"),
                transition("start", "end", "ProcessMemoryHeartBeat",
                           filters({"integer vmRssKB > =2097152", "double PseudoRandomDouble() < =0.1"}),
                           R"([{"name":"TriggerVelora"}])")});

// Returns the whole file, byte for byte. Without it no test means anything: the process ends.
inline std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << path << " cannot be read\n";
        std::abort();
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

// Returns the rule documents in examples/, without their tests.
inline std::vector<std::string> exampleDocuments() {
    std::vector<std::string> documents;
    for (const auto& entry : std::filesystem::directory_iterator(VIG_SOURCE_DIR "/examples")) {
        if (entry.path().extension() == ".json" && entry.path().stem().extension() != ".test") {
            documents.push_back(textOf(entry.path()));
        }
    }
    return documents;
}

}  // namespace support
