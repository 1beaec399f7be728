#include <fmt/format.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/catalogue/ActionNeeds.h"
#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/DocumentText.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/test/TestFile.h"
#include "vig/EventTypeNames.h"
#include "vig/functions/DoubleFunctions.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Strings = std::vector<std::string>;
using Names = std::set<std::string>;
using Accepts = std::function<bool(const std::string&)>;

const std::string kSchemas = VIG_SOURCE_DIR "/docs/schema/";

Json::Value parsed(const std::string& text) {
    return DocumentText("", text).root();
}

std::string oneLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value schema(const std::string& name) {
    return parsed(support::textOf(kSchemas + name));
}

Names namesIn(const auto& several, auto name) {
    Names names;
    for (const auto& each : several) {
        names.emplace(std::invoke(name, each));
    }
    return names;
}

void collect(Json::Value& value, std::vector<Json::Value*>& all) {
    all.push_back(&value);
    if (value.isObject() || value.isArray()) {
        for (Json::Value& each : value) {
            collect(each, all);
        }
    }
}

// Returns so many of the seeds, each changed at up to two places. `replacements` is a JSON array.
Strings changed(const Strings& seeds, const std::string& replacements, int rounds) {
    std::mt19937 random(1);
    const auto anyOf = [&](const auto& several) -> auto& {
        return several[static_cast<unsigned>(random() % several.size())];
    };
    const Json::Value others = parsed(replacements);
    Strings texts;
    for (int round = 0; round < rounds; ++round) {
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
        texts.push_back(oneLine(value));
    }
    return texts;
}

// Returns for each text whether the schema accepts it.
std::vector<bool> verdictsOf(const std::string& name, const Strings& texts) {
    std::string lines;
    for (const std::string& text : texts) {
        lines += oneLine(parsed(text)) + "\n";
    }
    const support::TemporaryFolder folder;
    const std::string output = support::outputOf("'" VIG_SOURCE_DIR "/tests/tools/schema_verdicts.py' '" + kSchemas +
                                                 name + "' <" + folder.write("texts", lines).string());
    EXPECT_EQ(output.size(), 2 * texts.size()) << output;
    std::vector<bool> verdicts;
    for (std::size_t index = 0; index < output.size(); index += 2) {
        verdicts.push_back(output[index] == '1');
    }
    verdicts.resize(texts.size());
    return verdicts;
}

// Expects that the schema accepts of changed seeds what `accepts` does, and its own examples and these besides.
void compare(const std::string& name, const Accepts& accepts, const Strings& seeds, const std::string& replacements,
             const Strings& examples) {
    constexpr int kRounds = 6000;
    Strings texts = changed(seeds, replacements, kRounds);
    std::vector<bool> accepted;
    std::ranges::transform(texts, std::back_inserter(accepted), accepts);
    const auto count = std::count(accepted.begin(), accepted.end(), true);
    EXPECT_GT(count, kRounds / 5);
    EXPECT_LT(count, kRounds * 4 / 5);
    for (const Json::Value& each : schema(name)["examples"]) {
        texts.push_back(oneLine(each));
    }
    for (const std::string& each : examples) {
        texts.push_back(each);
    }
    accepted.resize(texts.size(), true);
    const std::vector<bool> verdicts = verdictsOf(name, texts);
    for (std::size_t index = 0; index < texts.size(); ++index) {
        EXPECT_EQ(verdicts[index], accepted[index]) << texts[index];
    }
}

TEST(Schemas, RuleDocumentAcceptsWhatTheLibraryAccepts) {
    const auto documentWith = [](const std::string& filters) {
        return support::documentOf(
            {support::transition("start", "", "Test", filters, R"([{"name":"Test"},{"name":"TriggerVelora"}])")});
    };
    Strings seeds = {support::kCompleteDocument};
    for (const char* const each :
         {"integer a > = +12kB", "double =-.5 <= a", "double PseudoRandomDouble() < =inf",
          "double =0x1p3 != PseudoRandomDouble()", "string a == =b", "integer f() >= a", "double =x == ="}) {
        seeds.push_back(documentWith(support::filters({each})));
    }
    const auto registry = libraryRegistry();
    const support::LogCapture log;
    const auto accepts = [&](const std::string& text) {
        return VIGResponseParser().parseFromString(text, registry).error == VIGParseError::Ok;
    };
    Strings examples = support::exampleDocuments();
    for (const char* const outOfRange : {"double a < =1e400", "integer a < =99999999999999999999"}) {
        examples.push_back(documentWith(support::filters({outOfRange})));
        EXPECT_FALSE(accepts(examples.back())) << outOfRange;
    }
    compare(
        "rule-document.schema.json", accepts, seeds,
        R"([null, 0, -1.5, 2147483648.5, -2147483649.0, 1e300, true, "", "x", [], {}, "9e9", "integer", "double", " +7",)"
        R"("string", "nan", "\u000b7", "\u00a07", "function", "constant", "envvar", ">=", "Test", "PseudoRandomDouble"])",
        examples);
}

TEST(Schemas, StrictRuleDocumentRefusesOnlyWhatIsWarnedOf) {
    const auto documentWith = [](const std::string& state, const Strings& conditions) {
        return support::documentOf({support::transition("start", state, "Test", support::filters(conditions),
                                                        R"([{"name":"Test","comment":"x"}])"),
                                    support::transition(state, "end", "Test")});
    };
    const std::string draw = "double PseudoRandomDouble() ";
    Strings seeds = support::exampleDocuments();
    seeds.push_back(documentWith("a", {draw + "< =0.1", "string a == =b", "integer x > =1", "double =1.5e3 <= y"}));
    seeds.push_back(documentWith("b", {"double a > PseudoRandomDouble()", "string a < = b ", "double =-0x1p3 >= a"}));
    Strings texts = changed(
        seeds,
        R"([null, 2.5, true, "x", "a ", "\u00a0a", "7", "-1", "1.5", " 12", "12kB", "1e-3", "1.", ".5", "0x1p-3",)"
        R"("==", "!=", "integer", "double", "string", "function", "constant", "envvar", [], {}])",
        3000);
    const Strings refused = {documentWith("a ", {}),
                             documentWith("\u200ba", {}),
                             documentWith("a", {draw + "== =0.1"}),
                             documentWith("a", {draw + "< =10"}),
                             documentWith("a", {"integer x > 7"}),
                             documentWith("a", {"string x != =\tcamera"}),
                             documentWith("a", {"integer x > =12kB"}),
                             support::documentOf({support::transition("start", "end", "Test")})};
    texts.insert(texts.end(), refused.begin(), refused.end());
    const auto accepted = verdictsOf("rule-document.schema.json", texts);
    const auto strict = verdictsOf("rule-document.strict.schema.json", texts);
    std::size_t count = 0;
    for (std::size_t index = 0; index < texts.size(); ++index) {
        EXPECT_TRUE(accepted[index] || !strict[index]) << texts[index];
        EXPECT_TRUE(!strict[index] || index + refused.size() < texts.size()) << texts[index];
        if (accepted[index] && !strict[index]) {
            ++count;
            EXPECT_FALSE(
                findingsIn(DocumentText("", texts[index]), libraryRegistry(), Catalogue::builtIn()).all.empty())
                << texts[index];
        }
    }
    EXPECT_GT(count, 50U);
    EXPECT_EQ(verdictsOf("rule-document.strict.schema.json", seeds), std::vector<bool>(seeds.size(), true));
}

TEST(Schemas, EventRecordAcceptsWhatTheToolReads) {
    const auto accepts = [](const std::string& text) {
        const std::string padded = text + std::string(LineReader::PADDING, '\n');
        return RecordParser().parse(std::string_view(padded).substr(0, text.size())) != nullptr;
    };
    compare("event-record.schema.json", accepts,
            {R"({"event":"Timeout","timeout_id":3})", R"({"device":"a","ended":true})",
             R"({"event":"Test","device":"b"})", R"({"event":"Test","string":{"a":"b"},"int64":{"c":1,"d":0}})",
             R"({"event":"Test","time_ms":-1,"uint64":{"a":18446744073709551615},"bool":{"b":true},"string":{},)"
             R"("int64":{"":-9223372036854775808},"double":{"c":1e300,"d":2}})"},
            R"([null, 1, -1, 1.5, true, "", "Timeout", "Test", "x", [], {}, 18446744073709551615])",
            support::linesWith(support::textOf(VIG_SOURCE_DIR "/examples/trace.jsonl"), "{"));
}

TEST(Schemas, RuleTestsAcceptWhatTheToolReads) {
    const support::TemporaryFolder folder;
    for (const char* const events : {"x", "7", "info", "Test", "function", "envvar", "integer"}) {
        folder.write(events, R"({"event":"Test"})");
    }
    const auto accepts = [&](const std::string& text) {
        Strings ignored;
        // A file that is cut and written again goes to the disk at once.
        std::filesystem::remove(folder.path("test.json"));
        return readTestFile(folder.write("test.json", text), {}, Interruption(), ignored).has_value();
    };
    std::string filters = support::filters({"integer a > =1", "string =1 == b", "double a < b"});
    filters.insert(2, R"("event":"Test",)");
    compare(
        "rule-test.schema.json", accepts,
        {R"({"$schema":"x","rules":"x","tests":[{"name":"a","events":"x","expect":{},"draws":[0,0.5]}]})",
         R"({"rules":"x","tests":[{"name":"a","seed":4294967295,"context":{"int64":{"b":1}},"events":[{"event":"Test"}],)"
         R"("expect":{"log":["x",{"message":"x","priority":"info"}],"states":{"7":"a"},"moves":0,"triggers":[{"event":0,)"
         R"("name":"x","process":"x","config":-1,"metadata":[],"metadata_contains":["x"]}]}}]})",
         R"({"rules":"x","properties":[{"name":"a","at_most":{"triggers":0,"events":1},"config":1,"context":{}},)"
         R"({"name":"b","can_reach":{"7":"a"}},{"name":"c","cannot_reach":{"7":"a"}},{"name":"d","between_triggers":)" +
             filters + R"(},{"name":"e","trigger_only_if":)" + filters + "}]}",
         R"({"rules":"x","tests":[{"name":"a","expect":{},"series":{"event":"ProcessCpuHeartBeat","pid":7,"every_ms":0,)"
         R"("processName":["a b","c"],"cpuAvgUtilization":"-1.5e3 .5","uint64":{"a":"1 2"},"bool":{"b":"true x2"}}},)"
         R"({"name":"b","expect":{},"series":[{"event":"Timeout","timeout_id":1,"int64":{"c":[1,"-2"]}},{"event":"Test"}]}]})"},
        R"([null, 0, -1, 1.5, 4294967296, true, "x", "7", "info", "Test", "function", "envvar", "integer", [], {}])",
        support::linesWith(
            support::outputOf("cd " VIG_SOURCE_DIR
                              "/examples && for each in *.test.json; do tr '\\n' ' ' <$each; echo; done"),
            "{"));
}

// Whoever adds a name to the library is told here where else it must stand.
TEST(Schemas, AndTablesHaveTheNamesOfTheLibrary) {
    const auto keysOf = [](const auto& map) { return namesIn(map, [](const auto& each) { return each.first; }); };
    const auto valuesOf = [](const auto& table) {
        const auto texts = table.texts();
        return Names(texts.begin(), texts.end());
    };
    const auto enumeration = [rules = schema("rule-document.schema.json")](const std::string& place) {
        return namesIn(Json::Path(".definitions." + place + ".enum").resolve(rules), &Json::Value::asString);
    };
    const auto registry = libraryRegistry();
    const Names actions = keysOf(registry.getActionFunctionFactories());
    const Names functions = keysOf(registry.getDoublePureFunctions());
    EXPECT_EQ(namesIn(kActions, &KnownAction::name), actions);
    for (const std::string& key : actions) {
        EXPECT_EQ(key.find('('), key.npos)
            << key
            << " takes parameters: the schema refuses them, and the generator and the reference engine know of none";
    }
    EXPECT_EQ(namesIn(kDoubleFunctions, &DoubleFunction::name), functions);
    EXPECT_TRUE(registry.getInt64PureFunctions().empty() && registry.getStringPureFunctions().empty());
    EXPECT_EQ(enumeration("action.properties.name"), actions);
    EXPECT_EQ(enumeration("knownFunction.properties.value"), functions);
    EXPECT_EQ(enumeration("filter.properties.operator"), valuesOf(kFilterOperatorTable));
    EXPECT_EQ(enumeration("filter.properties.value_type"), valuesOf(kFilterValueTypeTable));
    EXPECT_EQ(enumeration("operand.properties.type"), valuesOf(kFilterOperandTypeTable));
    EXPECT_EQ(keysOf(registry.getEventTypes()), valuesOf(kEventTypeNames));
    EXPECT_EQ(namesIn(schema("event-record.schema.json")["properties"]["event"]["enum"], &Json::Value::asString),
              valuesOf(kEventTypeNames));
}

// An attribute that the catalogue has learnt is told here where else it must stand.
TEST(Schemas, ASeriesHasTheAttributesOfTheCatalogue) {
    const Catalogue catalogue = Catalogue::builtIn();
    const Json::Value allSeries = schema("rule-test.schema.json")["definitions"]["series"]["anyOf"];
    Names expected;
    for (const auto& [type, event] : kEventTypeNames.pairs) {
        expected.insert(std::string(event));
        const CataloguedAttributes* const known = catalogue.find(type);
        for (const auto& [name, kinds] : known != nullptr ? *known : CataloguedAttributes()) {
            expected.insert(fmt::format("{} {} #/definitions/{}Values", event, name, kinds.text()));
        }
    }
    Names actual;
    for (const Json::Value& series : allSeries) {
        const Json::Value& properties = series["properties"];
        Names events = namesIn(properties["event"]["enum"], &Json::Value::asString);
        events.insert(properties["event"].get("const", "").asString());
        for (const std::string& event : events) {
            actual.insert(event);
            for (const std::string& name : properties.getMemberNames()) {
                const std::string reference = properties[name]["$ref"].asString();
                if (reference.ends_with("Values")) {
                    actual.insert(fmt::format("{} {} {}", event, name, reference));
                }
            }
        }
    }
    actual.erase("");
    EXPECT_EQ(actual, expected);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
