#include "tools/vig/TestFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <json/reader.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "tools/vig/Descriptor.h"
#include "tools/vig/DocumentText.h"
#include "tools/vig/EventReader.h"
#include "tools/vig/FileText.h"
#include "tools/vig/Interruption.h"
#include "tools/vig/LineReader.h"
#include "tools/vig/NearestName.h"
#include "tools/vig/PriorityName.h"
#include "tools/vig/RecordParser.h"
#include "tools/vig/Text.h"
#include "vig/parsers/JsonTokens.h"

namespace tool {

namespace {

using Keys = std::vector<std::string_view>;

std::string_view kindOf(const Json::Value& json) {
    switch (json.type()) {
        case Json::nullValue:
            return "null";
        case Json::stringValue:
            return "a string";
        case Json::booleanValue:
            return "true or false";
        case Json::arrayValue:
            return "an array";
        case Json::objectValue:
            return "an object";
        default:
            return "a number";
    }
}

// Unlike documents, tests are read strictly. Empty if that finds nothing.
std::string reportOf(const std::string& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    const std::string_view json = Brenta::OS::VIG::withoutByteOrderMark(text);
    Json::Value root;
    std::string report;
    reader->parse(json.data(), json.data() + json.size(), &root, &report);
    return report;
}

// Turns the first entry of a report, "* Line 1, Column 2\n  message\n", into a message of the tool.
std::string messageOf(const std::string& file, const std::string& report) {
    unsigned line = 1;
    unsigned column = 1;
    int begin = 0;
    [[maybe_unused]] const int read = std::sscanf(report.c_str(), "* Line %u, Column %u %n", &line, &column, &begin);
    const std::string_view rest = std::string_view(report).substr(static_cast<std::size_t>(begin));
    return fmt::format("{}:{}:{}: error: {}", file, line, column, rest.substr(0, rest.find('\n')));
}

class TestFileReader {
  public:
    TestFileReader(const DocumentText& text, std::vector<std::string>& problems)
        : document(text), errors(problems), folder(std::filesystem::path(text.source().name()).parent_path()) {}

    TestFile read() {
        TestFile file{document.source().name(), {}, {}};
        const Json::Value& root = document.root();
        if (!isObject(root, "", {"rules", "tests"})) {
            return file;
        }
        file.rules = (folder / requiredText(root, "rules", "").value_or("")).string();
        const Json::Value& tests = root["tests"];
        if (!root.isMember("tests")) {
            complain(root, "", "\"tests\" is missing");
        } else if (isArray(tests, "tests")) {
            forEach(tests, "tests", [&](const Json::Value& each, const std::string& path) {
                file.tests.push_back(testCase(each, path));
            });
        }
        return file;
    }

  private:
    void complain(const Json::Value& at, const std::string& path, const std::string& what) {
        const auto place = document.source().positionOf(document.placeOf(at, path).begin);
        errors.push_back(fmt::format("{}:{}:{}: error: {}{}{}", document.source().name(), place.line, place.column,
                                     path, path.empty() ? "" : ": ", what));
    }

    void wrongKind(const Json::Value& json, const std::string& path, std::string_view expected) {
        complain(json, path, fmt::format("expected {}, got {}", expected, kindOf(json)));
    }

    bool isArray(const Json::Value& json, const std::string& path) {
        if (!json.isArray()) {
            wrongKind(json, path, "an array");
        }
        return json.isArray();
    }

    // Complains of keys that are not among those known.
    bool isObject(const Json::Value& json, const std::string& path, const Keys& known) {
        if (!json.isObject()) {
            wrongKind(json, path, "an object");
            return false;
        }
        for (const std::string& key : json.getMemberNames()) {
            if (std::ranges::find(known, key) == known.end()) {
                complain(json[key], path, "unknown key " + tool::quoted(key) + suggestion(key, known));
            }
        }
        return true;
    }

    static std::string member(const std::string& path, const std::string& key) {
        return path.empty() ? key : path + "." + key;
    }

    static void forEach(const Json::Value& array, const std::string& path, const auto& visit) {
        for (Json::ArrayIndex index = 0; index < array.size(); ++index) {
            visit(array[index], fmt::format("{}[{}]", path, index));
        }
    }

    std::optional<std::string> text(const Json::Value& json, const std::string& path) {
        if (json.isString()) {
            return json.asString();
        }
        wrongKind(json, path, "a string");
        return std::nullopt;
    }

    // Empty if the object does not have the key.
    std::optional<std::string> optionalText(const Json::Value& object, const std::string& key,
                                            const std::string& path) {
        return object.isMember(key) ? text(object[key], member(path, key)) : std::nullopt;
    }

    std::optional<std::string> requiredText(const Json::Value& object, const std::string& key,
                                            const std::string& path) {
        if (!object.isMember(key)) {
            complain(object, path, tool::quoted(key) + " is missing");
        }
        return optionalText(object, key, path);
    }

    std::optional<std::int64_t> optionalInteger(const Json::Value& object, const std::string& key,
                                                const std::string& path, std::int64_t least, std::int64_t most) {
        if (!object.isMember(key)) {
            return std::nullopt;
        }
        const Json::Value& json = object[key];
        if (json.isIntegral() && json.isInt64() && json.asInt64() >= least && json.asInt64() <= most) {
            return json.asInt64();
        }
        complain(json, member(path, key), fmt::format("expected an integer from {} to {}", least, most));
        return std::nullopt;
    }

    std::vector<std::string> texts(const Json::Value& json, const std::string& path) {
        std::vector<std::string> result;
        if (isArray(json, path)) {
            forEach(json, path, [&](const Json::Value& each, const std::string& place) {
                result.push_back(text(each, place).value_or(""));
            });
        }
        return result;
    }

    TestCase testCase(const Json::Value& json, const std::string& path) {
        TestCase test;
        if (!isObject(json, path, {"name", "events", "seed", "context", "expect"})) {
            return test;
        }
        test.line = document.source().positionOf(document.placeOf(json, path).begin).line;
        test.name = requiredText(json, "name", path).value_or("");
        if (json["name"].isString() && !names.insert(test.name).second) {
            complain(json["name"], member(path, "name"), "there is another test " + tool::quoted(test.name));
        }
        constexpr std::int64_t kMostSeed = std::numeric_limits<std::uint32_t>::max();
        test.seed = static_cast<std::uint32_t>(optionalInteger(json, "seed", path, 0, kMostSeed).value_or(test.seed));
        if (!json.isMember("events")) {
            complain(json, path, "\"events\" is missing");
        } else {
            readEvents(json["events"], member(path, "events"), test.events);
        }
        if (json.isMember("context")) {
            test.context = context(json["context"], member(path, "context"));
        }
        if (!json.isMember("expect")) {
            complain(json, path, "\"expect\" is missing");
        } else {
            test.expect = expectation(json["expect"], member(path, "expect"));
        }
        return test;
    }

    void readEvents(const Json::Value& json, const std::string& path, std::vector<EventRecord>& events) {
        if (json.isString()) {
            readEventFile(json, path, events);
        } else if (json.isArray()) {
            forEach(json, path, [&](const Json::Value& each, const std::string& place) {
                const Place range = document.placeOf(each, place);
                events.push_back(
                    record(document.source().text().substr(range.begin, range.end - range.begin), each, place));
            });
        } else {
            wrongKind(json, path, "an array of event records or the name of a file of them");
        }
    }

    void readEventFile(const Json::Value& json, const std::string& path, std::vector<EventRecord>& events) {
        const std::string name = (folder / json.asString()).string();
        const Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
        if (!file.isOpen()) {
            complain(json, path, name + ": " + systemError(errno));
            return;
        }
        const Interruption never;
        EventReader reader(file.get(), name, never, [] {});
        EventRecord record;
        auto status = reader.next(record);
        for (; status == EventReader::Status::Record; status = reader.next(record)) {
            events.push_back(record);
        }
        if (status == EventReader::Status::Failed) {
            errors.push_back(reader.error());
        }
    }

    EventRecord record(std::string json, const Json::Value& at, const std::string& path) {
        EventRecord result;
        const std::size_t size = json.size();
        json += "\n" + std::string(LineReader::PADDING, ' ');
        if (!records.parse(std::string_view(json).substr(0, size), result)) {
            complain(at, path, records.error());
        }
        return result;
    }

    // The attributes of a record without its event.
    AttributeSet context(const Json::Value& json, const std::string& path) {
        if (!isObject(json, path, {"uint64", "int64", "double", "bool", "string"})) {
            return {};
        }
        const Place range = document.placeOf(json, path);
        const std::string attributes = document.source().text().substr(range.begin + 1, range.end - range.begin - 1);
        return record((json.empty() ? R"({"event":"Test")" : R"({"event":"Test",)") + attributes, json, path)
            .attributes;
    }

    Expectation expectation(const Json::Value& json, const std::string& path) {
        Expectation expected;
        if (!isObject(json, path, {"triggers", "log", "states", "moves"})) {
            return expected;
        }
        if (json.isMember("triggers") && isArray(json["triggers"], member(path, "triggers"))) {
            forEach(json["triggers"], member(path, "triggers"), [&](const Json::Value& each, const std::string& place) {
                expected.triggers.push_back(trigger(each, place));
            });
        }
        if (json.isMember("log") && isArray(json["log"], member(path, "log"))) {
            forEach(json["log"], member(path, "log"), [&](const Json::Value& each, const std::string& place) {
                expected.logs.push_back(log(each, place));
            });
        }
        if (json.isMember("states")) {
            expected.states = states(json["states"], member(path, "states"));
        }
        expected.moves = optionalInteger(json, "moves", path, 0, std::numeric_limits<std::int64_t>::max());
        return expected;
    }

    ExpectedTrigger trigger(const Json::Value& json, const std::string& path) {
        ExpectedTrigger expected;
        if (!isObject(json, path, {"name", "process", "config", "event", "metadata", "metadata_contains"})) {
            return expected;
        }
        constexpr auto kLimits = std::numeric_limits<std::int64_t>();
        expected.name = optionalText(json, "name", path);
        expected.process = optionalText(json, "process", path);
        expected.config = optionalInteger(json, "config", path, kLimits.min(), kLimits.max());
        expected.event = optionalInteger(json, "event", path, 0, kLimits.max());
        if (json.isMember("metadata")) {
            expected.metadata = texts(json["metadata"], member(path, "metadata"));
        }
        if (json.isMember("metadata_contains")) {
            expected.metadataContains = texts(json["metadata_contains"], member(path, "metadata_contains"));
        }
        return expected;
    }

    ExpectedLog log(const Json::Value& json, const std::string& path) {
        if (json.isString()) {
            return {json.asString(), std::nullopt};
        }
        if (!json.isObject()) {
            wrongKind(json, path, "a message or an object");
            return {};
        }
        isObject(json, path, {"message", "priority"});
        ExpectedLog expected{requiredText(json, "message", path).value_or(""), optionalText(json, "priority", path)};
        Keys priorities;
        for (int each = ANDROID_LOG_VERBOSE; each <= ANDROID_LOG_FATAL; ++each) {
            priorities.push_back(priorityName(each));
        }
        if (expected.priority && std::ranges::find(priorities, *expected.priority) == priorities.end()) {
            complain(
                json["priority"], member(path, "priority"),
                "unknown priority " + tool::quoted(*expected.priority) + suggestion(*expected.priority, priorities));
        }
        return expected;
    }

    std::vector<ExpectedState> states(const Json::Value& json, const std::string& path) {
        std::vector<ExpectedState> expected;
        if (!json.isObject()) {
            wrongKind(json, path, "an object");
            return expected;
        }
        for (const std::string& key : json.getMemberNames()) {
            std::int64_t id = 0;
            const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), id);
            if (error != std::errc() || end != key.data() + key.size()) {
                complain(json[key], path, "expected the id of a configuration as key, got " + tool::quoted(key));
            }
            expected.push_back({id, text(json[key], member(path, key)).value_or("")});
        }
        return expected;
    }

    const DocumentText& document;
    std::vector<std::string>& errors;
    const std::filesystem::path folder;
    RecordParser records;
    std::set<std::string> names;
};

}  // namespace

std::optional<TestFile> readTestFile(const std::string& path, std::vector<std::string>& errors) {
    const std::size_t before = errors.size();
    std::string problem;
    auto content = readFile(path, problem);
    if (!content) {
        errors.push_back("vig: error: " + path + ": " + problem);
        return std::nullopt;
    }
    const DocumentText document(path, std::move(*content));
    // The strict reader must not be given what the other one refuses, such as text that is nested too deep.
    const std::string report = document.report() ? *document.report() : reportOf(document.source().text());
    if (!report.empty()) {
        errors.push_back(messageOf(path, report));
        return std::nullopt;
    }
    TestFile file = TestFileReader(document, errors).read();
    return errors.size() == before ? std::optional(std::move(file)) : std::nullopt;
}

}  // namespace tool
