#include <gmock/gmock.h>
#include <json/json.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <valijson/adapters/jsoncpp_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tools/vig/EventNames.h"
#include "tools/vig/LineReader.h"
#include "tools/vig/RecordParser.h"
#include "tools/vig/Registry.h"
#include "vig/parsers/FilterParser.h"
#include "vig/parsers/JsonText.h"
#include "vig/parsers/VIGResponseParser.h"

namespace {

using support::filter;
using support::operand;
using support::transition;

Json::Value parsed(const std::string& text) {
    Json::Value value;
    EXPECT_FALSE(Brenta::OS::VIG::readJson(text, value)) << text;
    return value;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

class Schema {
  public:
    explicit Schema(const std::string& name)
        : json(parsed(contentOf(VIG_SOURCE_DIR "/docs/schema/" + name + ".schema.json"))) {
        valijson::SchemaParser().populateSchema(valijson::adapters::JsonCppAdapter(json), schema);
    }

    bool accepts(const Json::Value& value) {
        return validator.validate(schema, valijson::adapters::JsonCppAdapter(value), nullptr);
    }

    // The words of the "enum" that stands there.
    std::set<std::string> words(const std::string& path) const {
        std::set<std::string> found;
        for (const Json::Value& each : Json::Path(path + ".enum").resolve(json)) {
            found.insert(each.asString());
        }
        return found;
    }

    const Json::Value json;

  private:
    valijson::Schema schema;
    valijson::Validator validator;
};

bool libraryAccepts(const Json::Value& document) {
    static const auto registry = tool::libraryRegistry();
    const support::LogCapture log;
    return Brenta::OS::VIG::VIGResponseParser().parse(document, registry).error == Brenta::OS::VIG::VIGParseError::Ok;
}

bool toolAccepts(const Json::Value& record) {
    static tool::RecordParser parser;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    const std::string text = Json::writeString(builder, record);
    const std::string padded = text + std::string(tool::LineReader::PADDING, '\n');
    tool::EventRecord ignored;
    return parser.parse(std::string_view(padded).substr(0, text.size()), ignored);
}

// The value itself and all that is in it.
void collect(Json::Value& value, std::vector<Json::Value*>& all) {
    all.push_back(&value);
    if (value.isObject() || value.isArray()) {
        for (Json::Value& each : value) {
            collect(each, all);
        }
    }
}

// Replaces, removes or renames something in a value, somewhere.
void mutate(Json::Value& root, const std::vector<Json::Value>& replacements, std::mt19937& random) {
    const auto below = [&](std::size_t count) { return random() % count; };
    std::vector<Json::Value*> all;
    collect(root, all);
    Json::Value& place = *all[below(all.size())];
    const auto members = place.isObject() ? place.getMemberNames() : std::vector<std::string>();
    if (members.empty() || below(2) == 0) {
        place = replacements[below(replacements.size())];
        return;
    }
    const std::string& member = members[below(members.size())];
    if (below(2) == 0) {
        place["other"] = place[member];
    }
    place.removeMember(member);
}

struct Verdicts {
    int accepted = 0;
    int refused = 0;
};

// Mutates the seeds in turn, and holds each result that is not lax against the schema.
Verdicts compare(Schema& schema, bool (*accepts)(const Json::Value&), const std::vector<Json::Value>& seeds,
                 const std::vector<Json::Value>& replacements) {
    std::mt19937 random(1);
    Verdicts verdicts;
    for (int round = 0; round < 6000; ++round) {
        Json::Value value = seeds[static_cast<std::size_t>(round) % seeds.size()];
        for (auto changes = random() % 3; changes > 0; --changes) {
            mutate(value, replacements, random);
        }
        const bool accepted = accepts(value);
        ++(accepted ? verdicts.accepted : verdicts.refused);
        EXPECT_EQ(schema.accepts(value), accepted) << value.toStyledString();
    }
    return verdicts;
}

std::vector<Json::Value> ruleSeeds() {
    const std::string filters[] = {
        filter(">", "integer", operand("envvar", "a"), operand("constant", " +12kB")),
        filter("<=", "double", operand("constant", "-.5"), operand("envvar", "a")),
        filter("<", "double", operand("function", "PseudoRandomDouble"), operand("constant", "inf")),
        filter("!=", "double", operand("constant", "0x1p3"), operand("function", "PseudoRandomDouble")),
        filter("==", "string", operand("envvar", "a"), operand("constant", "b")),
        filter(">=", "integer", operand("function", "f"), operand("envvar", "a")),
        filter("==", "double", operand("constant", "x"), operand("constant", "")),
    };
    std::vector<Json::Value> seeds = {parsed(support::kCompleteDocument)};
    for (const std::string& each : filters) {
        seeds.push_back(parsed(
            support::document({support::config(1, {transition("start", "a", "Test", "[" + each + "]",
                                                              R"([{"name":"Test"},{"name":"TriggerVeloraCpu"}])")})})));
    }
    return seeds;
}

TEST(RuleDocumentSchema, AcceptsWhatTheLibraryAccepts) {
    Schema schema("rule-document");
    for (const auto& entry : std::filesystem::directory_iterator(VIG_SOURCE_DIR "/examples")) {
        const Json::Value document =
            entry.path().extension() == ".json" ? parsed(contentOf(entry.path())) : Json::Value();
        if (document.isMember("configs")) {
            EXPECT_TRUE(schema.accepts(document)) << entry.path();
        }
    }
    std::vector<Json::Value> replacements = {Json::nullValue,
                                             0,
                                             -1.5,
                                             2147483648.5,
                                             -2147483649.0,
                                             true,
                                             "",
                                             "x",
                                             Json::arrayValue,
                                             Json::objectValue,
                                             "9e9",
                                             "integer",
                                             "double",
                                             "string",
                                             "nan",
                                             "\v7",
                                             "\xC2\xA0"
                                             "7",
                                             "function",
                                             "constant",
                                             "envvar",
                                             ">=",
                                             "Test",
                                             "PseudoRandomDouble",
                                             1e300};
    const Verdicts verdicts = compare(schema, libraryAccepts, ruleSeeds(), replacements);
    EXPECT_GT(verdicts.accepted, 1200);
    EXPECT_GT(verdicts.refused, 1200);
}

TEST(RuleDocumentSchema, IsLaxerOnlyWhereItSaysSo) {
    Schema schema("rule-document");
    const auto withConstant = [](const std::string& type, const std::string& text) {
        return support::document({support::config(
            1, {transition("", "", "Test",
                           "[" + filter("<", type, operand("envvar", "a"), operand("constant", text)) + "]")})});
    };
    for (const std::string& text :
         {withConstant("double", "1e400"), withConstant("integer", "99999999999999999999"),
          std::string(R"({"configs":[{"id":9223372036854775808,"payload":{"id":1,"data":{"transitions":[]}}}]})")}) {
        EXPECT_TRUE(schema.accepts(parsed(text))) << text;
        EXPECT_FALSE(libraryAccepts(parsed(text))) << text;
    }
}

TEST(RuleDocumentSchema, HasTheNamesOfTheLibrary) {
    const auto registry = tool::libraryRegistry();
    const auto valuesOf = [](const auto& table) {
        std::set<std::string> values;
        std::ranges::transform(table.pairs, std::inserter(values, values.end()),
                               [](const auto& pair) { return std::string(pair.second); });
        return values;
    };
    const auto keysOf = [](const auto& map) {
        std::set<std::string> keys;
        std::ranges::transform(map, std::inserter(keys, keys.end()), [](const auto& pair) { return pair.first; });
        return keys;
    };
    const Schema schema("rule-document");
    EXPECT_EQ(schema.words(".definitions.eventName"), keysOf(registry.getEventTypes()));
    EXPECT_EQ(schema.words(".definitions.filter.properties.operator"), valuesOf(Brenta::OS::VIG::kFilterOperatorTable));
    EXPECT_EQ(schema.words(".definitions.filter.properties.value_type"),
              valuesOf(Brenta::OS::VIG::kFilterValueTypeTable));
    EXPECT_EQ(schema.words(".definitions.operand.properties.type"), valuesOf(Brenta::OS::VIG::kFilterOperandTypeTable));
    EXPECT_EQ(schema.words(".definitions.knownFunction.properties.value"), keysOf(registry.getDoublePureFunctions()));
    EXPECT_EQ(schema.words(".definitions.action.properties.name"), keysOf(registry.getActionFunctionFactories()));
    EXPECT_EQ(Schema("event-record").words(".properties.event"), keysOf(registry.getEventTypes()));
}

TEST(EventRecordSchema, AcceptsWhatTheToolReads) {
    Schema schema("event-record");
    std::vector<Json::Value> seeds;
    for (const Json::Value& each : schema.json["examples"]) {
        seeds.push_back(each);
    }
    seeds.push_back(parsed(R"({"event":"Test","time_ms":-1,"uint64":{"a":18446744073709551615},"bool":{"b":true},)"
                           R"("int64":{"":-9223372036854775808},"double":{"c":1e300,"d":2},"string":{}})"));
    std::ifstream trace(VIG_SOURCE_DIR "/examples/trace.jsonl");
    for (std::string line; std::getline(trace, line);) {
        EXPECT_TRUE(schema.accepts(parsed(line))) << line;
    }
    const std::vector<Json::Value> replacements = {
        Json::nullValue,       1, -1, 1.5, true, "", "Timeout", "Test", "x", Json::arrayValue, Json::objectValue,
        Json::Value::maxUInt64};
    const Verdicts verdicts = compare(schema, toolAccepts, seeds, replacements);
    EXPECT_GT(verdicts.accepted, 1200);
    EXPECT_GT(verdicts.refused, 1200);
}

}  // namespace
