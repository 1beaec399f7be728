#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/io/FileText.h"
#include "tools/vig/test/TestFile.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::filter;
using support::operand;

Json::Value parsed(const std::string& text) {
    return DocumentText("", text).root();
}

std::string contentOf(const std::filesystem::path& path) {
    std::string problem;
    return readFile(VIG_SOURCE_DIR / path, Interruption(), problem).value_or("");
}

class Schema {
  public:
    explicit Schema(const std::string& name) : path("docs/schema/" + name), json(parsed(contentOf(path))) {}

    // Expects that the schema accepts exactly those of the values whose place in `accepted` is true.
    void expectAccepts(const std::vector<Json::Value>& values, const std::vector<bool>& accepted) const {
        Json::StreamWriterBuilder oneLine;
        oneLine["indentation"] = "";
        std::string lines;
        for (const Json::Value& value : values) {
            lines += Json::writeString(oneLine, value) + "\n";
        }
        const support::TemporaryFolder folder;
        const std::string source = VIG_SOURCE_DIR "/";
        const std::string output = support::outputOf("'" + source + "tests/tools/schema_verdicts.py' '" + source +
                                                     path + "' <'" + folder.write("values", lines).string() + "'");
        ASSERT_EQ(output.size(), 2 * values.size()) << output;
        for (std::size_t index = 0; index < values.size(); ++index) {
            EXPECT_EQ(output[2 * index] == '1', accepted[index]) << values[index].toStyledString();
        }
    }

    // Of the "enum" that stands there.
    std::set<std::string> words(const std::string& place) const {
        std::set<std::string> found;
        for (const Json::Value& each : Json::Path(place + ".enum").resolve(json)) {
            found.insert(each.asString());
        }
        return found;
    }

    const std::string path;  // from the project's folder
    const Json::Value json;
};

bool libraryAccepts(const Json::Value& document) {
    static const auto registry = libraryRegistry();
    const support::LogCapture log;
    return VIGResponseParser().parse(document, registry).error == VIGParseError::Ok;
}

bool toolAccepts(const Json::Value& record) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    const std::string text = Json::writeString(builder, record);
    const std::string padded = text + std::string(LineReader::PADDING, '\n');
    EventRecord ignored;
    return RecordParser().parse(std::string_view(padded).substr(0, text.size()), ignored);
}

void collect(Json::Value& value, std::vector<Json::Value*>& all) {
    all.push_back(&value);
    if (value.isObject() || value.isArray()) {
        for (Json::Value& each : value) {
            collect(each, all);
        }
    }
}

// Mutates the seeds, at up to two places, and holds each result against the schema. `replacements` is a JSON array.
void compare(const std::string& name, const std::function<bool(const Json::Value&)>& accepts,
             const std::vector<std::string>& seeds, const std::string& replacements) {
    std::mt19937 random(1);
    const auto anyOf = [&](const auto& several) -> auto& {
        return several[static_cast<unsigned>(random() % several.size())];
    };
    const Json::Value others = parsed(replacements);
    std::vector<Json::Value> values;
    std::vector<bool> accepted;
    constexpr int kRounds = 6000;
    for (int round = 0; round < kRounds; ++round) {
        Json::Value value = parsed(anyOf(seeds));
        for (auto changes = random() % 3; changes > 0; --changes) {
            std::vector<Json::Value*> all;
            collect(value, all);
            Json::Value& place = *anyOf(all);
            if (place.isObject() && !place.empty() && random() % 2 == 0) {
                place.removeMember(anyOf(place.getMemberNames()));
                place["other"] = anyOf(others);
            } else {
                place = anyOf(others);
            }
        }
        accepted.push_back(accepts(value));
        values.push_back(std::move(value));
    }
    Schema(name).expectAccepts(values, accepted);
    const auto count = std::count(accepted.begin(), accepted.end(), true);
    EXPECT_GT(count, kRounds / 5);
    EXPECT_LT(count, kRounds * 4 / 5);
}

std::string documentWith(const std::string& someFilter) {
    return support::document(
        {support::config(1, {support::transition("start", "", "Test", "[" + someFilter + "]",
                                                 R"([{"name":"Test"},{"name":"TriggerVelora"}])")})});
}

TEST(Schemas, RuleDocumentAcceptsWhatTheLibraryAccepts) {
    std::vector<std::string> seeds = {support::kCompleteDocument};
    for (const std::string& each :
         {filter(">", "integer", operand("envvar", "a"), operand("constant", " +12kB")),
          filter("<=", "double", operand("constant", "-.5"), operand("envvar", "a")),
          filter("<", "double", operand("function", "PseudoRandomDouble"), operand("constant", "inf")),
          filter("!=", "double", operand("constant", "0x1p3"), operand("function", "PseudoRandomDouble")),
          filter("==", "string", operand("envvar", "a"), operand("constant", "b")),
          filter(">=", "integer", operand("function", "f"), operand("envvar", "a")),
          filter("==", "double", operand("constant", "x"), operand("constant", ""))}) {
        seeds.push_back(documentWith(each));
    }
    compare(
        "rule-document.schema.json", libraryAccepts, seeds,
        R"([null, 0, -1.5, 2147483648.5, -2147483649.0, 1e300, true, "", "x", [], {}, "9e9", "integer", "double",)"
        R"("string", "nan", "\u000b7", "\u00a07", "function", "constant", "envvar", ">=", "Test", "PseudoRandomDouble"])");
    std::vector<Json::Value> lax;
    for (const auto& [type, tooLarge] : {std::pair("double", "1e400"), std::pair("integer", "99999999999999999999")}) {
        lax.push_back(parsed(documentWith(filter("<", type, operand("envvar", "a"), operand("constant", tooLarge)))));
        EXPECT_FALSE(libraryAccepts(lax.back())) << tooLarge;
    }
    Schema("rule-document.schema.json").expectAccepts(lax, {true, true});
}

TEST(Schemas, EventRecordAcceptsWhatTheToolReads) {
    compare("event-record.schema.json", toolAccepts,
            {R"({"event":"Timeout","timeout_id":3})", R"({"event":"Test","string":{"a":"b"},"int64":{"c":1,"d":0}})",
             R"({"event":"Test","time_ms":-1,"uint64":{"a":18446744073709551615},"bool":{"b":true},"string":{},)"
             R"("int64":{"":-9223372036854775808},"double":{"c":1e300,"d":2}})"},
            R"([null, 1, -1, 1.5, true, "", "Timeout", "Test", "x", [], {}, 18446744073709551615])");
}

TEST(Schemas, RuleTestsAcceptWhatTheToolReads) {
    const support::TemporaryFolder folder;
    for (const char* const events : {"x", "7", "info", "Test"}) {
        folder.write(events, R"({"event":"Test"})");
    }
    const auto accepts = [&](const Json::Value& tests) {
        std::vector<std::string> ignored;
        // A file that is cut and written again goes to the disk at once.
        std::filesystem::remove(folder.path("test.json"));
        return readTestFile(folder.write("test.json", tests.toStyledString()), Interruption(), ignored).has_value();
    };
    compare(
        "rule-test.schema.json", accepts,
        {R"({"$schema":"x","rules":"x","tests":[{"name":"a","events":"x","expect":{}}]})",
         R"({"rules":"x","tests":[{"name":"a","seed":4294967295,"context":{"int64":{"b":1}},"events":[{"event":"Test"}],)"
         R"("expect":{"log":["x",{"message":"x","priority":"info"}],"states":{"7":"a"},"moves":0,"triggers":[{"event":0,)"
         R"("name":"x","process":"x","config":-1,"metadata":[],"metadata_contains":["x"]}]}}]})"},
        R"([null, 0, -1, 1.5, 4294967296, true, "x", "7", "info", "Test", [], {}])");
}

TEST(Schemas, AcceptTheExamples) {
    std::vector<Json::Value> rules;
    std::vector<Json::Value> tests;
    std::vector<Json::Value> records;
    for (const auto& entry : std::filesystem::directory_iterator(VIG_SOURCE_DIR "/examples")) {
        if (entry.path().extension() == ".json") {
            const Json::Value json = parsed(contentOf(entry.path()));
            (json.isMember("tests") ? tests : rules).push_back(json);
        }
    }
    for (const std::string& line : support::linesWith(contentOf("examples/trace.jsonl"), "")) {
        records.push_back(parsed(line));
    }
    for (auto& [name, values] :
         {std::pair("rule-document.schema.json", &rules), std::pair("rule-test.schema.json", &tests),
          std::pair("event-record.schema.json", &records)}) {
        const Schema schema(name);
        EXPECT_FALSE(values->empty());
        values->insert(values->end(), schema.json["examples"].begin(), schema.json["examples"].end());
        schema.expectAccepts(*values, std::vector<bool>(values->size(), true));
    }
}

TEST(Schemas, HaveTheNamesOfTheLibrary) {
    const auto namesOf = [](const auto& pairs, const auto& nameOf) {
        std::set<std::string> names;
        for (const auto& pair : pairs) {
            names.emplace(nameOf(pair));
        }
        return names;
    };
    const auto keysOf = [&](const auto& map) { return namesOf(map, [](const auto& pair) { return pair.first; }); };
    const auto valuesOf = [&](const auto& table) {
        const auto texts = table.texts();
        return std::set<std::string>(texts.begin(), texts.end());
    };
    const auto registry = libraryRegistry();
    const Schema schema("rule-document.schema.json");
    const std::string filterPath = ".definitions.filter.properties.";
    EXPECT_EQ(schema.words(".definitions.eventName"), keysOf(registry.getEventTypes()));
    EXPECT_EQ(schema.words(filterPath + "operator"), valuesOf(kFilterOperatorTable));
    EXPECT_EQ(schema.words(filterPath + "value_type"), valuesOf(kFilterValueTypeTable));
    EXPECT_EQ(schema.words(".definitions.operand.properties.type"), valuesOf(kFilterOperandTypeTable));
    EXPECT_EQ(schema.words(".definitions.knownFunction.properties.value"), keysOf(registry.getDoublePureFunctions()));
    EXPECT_EQ(schema.words(".definitions.action.properties.name"), keysOf(registry.getActionFunctionFactories()));
    EXPECT_EQ(Schema("event-record.schema.json").words(".properties.event"), keysOf(registry.getEventTypes()));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
