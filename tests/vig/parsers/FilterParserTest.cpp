#include "vig/parsers/FilterParser.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <unordered_map>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "tests/vig/parsers/Json.h"

namespace {

using namespace Brenta::OS::VIG;
using support::Attributes;
using support::errorLines;
using support::filter;
using support::LogCapture;
using support::operand;
using support::TestContext;
using support::TestEvent;

const std::vector<std::string> kIntegers = {"-1", "0", "-9223372036854775808", "9223372036854775807",
                                            // These two are one and the same as doubles.
                                            "9007199254740993", "9007199254740992"};
const std::vector<std::string> kDoubles = {"0.30000000000000004", "0.3", "-0", "0", "-inf", "inf", "nan"};
const std::vector<std::string> kStrings = {"", "abd", "abcz", "ab", "Z", "\u00E4", "10", "9", "ab\\u0000b"};

void valueOf(const std::string& text, std::int64_t& value) {
    value = std::stoll(text);
}
void valueOf(const std::string& text, double& value) {
    value = std::stod(text);
}
void valueOf(const std::string& text, std::string& value) {
    value = json('"' + text + '"').asString();
}

// The values by name: "x0" and so on, as the functions are called with a "()" behind it.
template <typename T>
support::NamedValues<T> named(const std::vector<std::string>& texts) {
    support::NamedValues<T> values;
    for (const std::string& text : texts) {
        valueOf(text, values.emplace_back("x" + std::to_string(values.size()), T()).second);
    }
    return values;
}

template <typename T>
auto functionsOf(const support::NamedValues<T>& values) {
    std::unordered_map<std::string, std::function<T()>> functions;
    for (const auto& [name, value] : values) {
        functions["of " + name] = [result = value] { return result; };
    }
    return functions;
}

const Attributes kAll = {
    .int64 = named<std::int64_t>(kIntegers), .real = named<double>(kDoubles), .string = named<std::string>(kStrings)};

const VIGParserConfig& registry() {
    static const VIGParserConfig registry({}, {}, functionsOf(kAll.int64), functionsOf(kAll.real),
                                          functionsOf(kAll.string), {{"Half", [] { return true; }}});
    return registry;
}

void expectRefused(const Json::Value& value, const std::vector<std::string>& messages) {
    const LogCapture log;
    EXPECT_EQ(_parseFilter(value, registry()), nullptr);
    EXPECT_EQ(log.lines(), errorLines(messages));
}

// The registry goes before the filter is used, as it does when a document is parsed.
bool passes(const std::string& text, Attributes event, Attributes context = {}) {
    const auto parsed = _parseFilter(json(text), registry());
    EXPECT_NE(parsed, nullptr) << text;
    return parsed && (*parsed)(TestContext(std::move(context)), TestEvent(std::move(event)));
}

std::string constant(const std::string& text) {
    return operand("constant", text);
}

const std::string kX = operand("envvar", "x");
const Json::Value kGood = json(filter(">", "integer", kX, constant("80")));

TEST(FilterParser, RefusesABadMemberWithItsMessages) {
    const std::string whole = "Invalid filter JSON: {}.";
    const std::string noObject = "Filter operand must be an object.";
    const std::string noType = "Filter operand type is missing or invalid.";
    const std::string noValue = "Filter operand value is missing or invalid.";
    const std::string first = "Invalid operand1 JSON: {}.";
    const std::string second = "Invalid operand2 JSON: {}.";
    struct {
        std::string key;
        std::vector<std::string> values;  // empty for a missing member
        std::vector<std::string> messages;
    } const cases[] = {
        {"operator", {"", "null", "1", R"(["=="])"}, {whole}},
        {"operator", {R"("=")", R"("=\u0000=")"}, {"Invalid operator string: =."}},
        {"operator", {R"(" ==")"}, {"Invalid operator string:  ==."}},
        {"operator", {R"("%n%s")"}, {"Invalid operator string: %n%s."}},  // a document is no format
        {"value_type", {"", "null", R"("")"}, {"Invalid operand value type: ."}},
        {"value_type", {R"("Integer")"}, {"Invalid operand value type: Integer."}},
        {"value_type", {R"("integer\u0000")"}, {"Invalid operand value type: integer."}},
        {"value_type", {"0.5"}, {"Invalid operand value type: 0.5."}},
        {"value_type", {"true"}, {"Invalid operand value type: true."}},
        {"value_type", {"{}", R"(["integer"])"}, {"Invalid operand value type: {}."}},
        {"operand1", {"", "null", "[]", R"("x")"}, {noObject, first}},
        {"operand1", {"{}", R"({"type":null})", R"({"type":["envvar"],"value":"x"})"}, {noType, first}},
        {"operand1", {R"({"type":"Constant","value":1})"}, {"Unknown filter operand type: Constant", first}},
        {"operand1", {R"({"type":""})"}, {"Unknown filter operand type: ", first}},
        {"operand1", {R"({"type":"envvar"})", R"({"type":"constant","value":80})"}, {noValue, first}},
        {"operand1", {R"({"type":"constant","value":{}})", R"({"type":"envvar","value":true})"}, {noValue, first}},
        {"operand1", {operand("function", "Half")}, {"Failed to find function: Half"}},
        {"operand2", {"", "[]"}, {noObject, second}},
        {"operand2", {R"({"value":"80"})"}, {noType, second}},
        {"operand2", {R"({"type":"var"})"}, {"Unknown filter operand type: var", second}},
        {"operand2", {R"({"type":"constant","value":80})"}, {noValue, second}},
    };
    for (const auto& [key, values, messages] : cases) {
        for (const std::string& value : values) {
            const Json::Value bad = with(kGood, key, value);
            expectRefused(bad, shown(messages, key == "operator" ? bad : bad[key]));
        }
    }
    for (const char* text : {"null", "[]", "3", R"("==")"}) {
        expectRefused(json(text), shown({whole}, json(text)));
    }
}

TEST(FilterParser, ReportsTheFirstFaultOnly) {
    expectRefused(json(R"({"operator":"=>"})"), {"Invalid operator string: =>."});
    expectRefused(json(R"({"operator":"==","operand1":1})"), {"Invalid operand value type: ."});
    expectRefused(json(R"({"operator":"==","value_type":"double"})"),
                  {"Filter operand must be an object.", "Invalid operand1 JSON: null\n."});
    expectRefused(json(filter("==", "integer", constant("abc"), operand("function", "Half"))),
                  {"Failed to find function: Half"});
}

TEST(FilterParser, ReadsATypedConstantUpToTheEndOfTheNumberAndRefusesAllElse) {
    const struct {
        std::string type, text;
        Attributes event;
    } read[] = {{"integer", "12kB", {.int64 = {{"x", 12}}}},
                {"integer", " \\t+7", {.int64 = {{"x", 7}}}},
                {"integer", "010", {.int64 = {{"x", 10}}}},
                {"integer", "2.0", {.int64 = {{"x", 2}}}},
                {"integer", "-9223372036854775808", {.int64 = {{"x", INT64_MIN}}}},
                {"double", "0.75x", {.real = {{"x", 0.75}}}},
                {"double", " -1e3", {.real = {{"x", -1000}}}},
                {"double", "-Infinity", {.real = {{"x", -INFINITY}}}},
                {"double", "0,5", {.real = {{"x", 0}}}},
                {"double", "1e-310", {.real = {{"x", 1e-310}}}},
                {"double", "-3e-324", {.real = {{"x", -0x1p-1074}}}},
                {"double", "0e-999", {.real = {{"x", 0}}}}};
    for (const auto& [type, text, event] : read) {
        EXPECT_TRUE(passes(filter("==", type, kX, constant(text)), event)) << text;
    }
    const std::pair<std::string, std::vector<std::string>> refused[] = {
        {"integer", {"", "abc", "-", ".5", "9223372036854775808", "-9223372036854775809"}},
        {"double", {"", "abc", "1e999", "-1e999", "1e-400", "-1e-400"}}};
    for (const auto& [type, texts] : refused) {
        for (const std::string& text : texts) {
            for (const std::string& source : {kX, operand("function", "of x1")}) {
                expectRefused(json(filter("==", type, constant(text), source)),
                              {"Invalid constant of value type " + type + ": " + text + "."});
            }
        }
    }
}

TEST(FilterParser, TakesTheNearestNumberForAConstantAgainstAConstant) {
    const auto equal = [](const std::string& type, const std::string& left, const std::string& right) {
        return passes(filter("==", type, constant(left), constant(right)), {});
    };
    EXPECT_TRUE(equal("integer", "12abc", "12") && equal("integer", "abc", "0") && equal("integer", "2", "2.0"));
    EXPECT_TRUE(equal("integer", "99999999999999999999", "9223372036854775807"));
    EXPECT_TRUE(equal("integer", "-99999999999999999999", "-9223372036854775808"));
    EXPECT_TRUE(equal("double", "abc", "0") && equal("double", "1e400", "inf") && equal("double", "-1e400", "-inf"));
    EXPECT_TRUE(equal("double", "2", "2.0") && !equal("double", "nan", "nan") && !equal("string", "2", "2.0"));
}

template <typename T>
void expectEveryComparison(const std::string& type, const std::vector<std::string>& texts,
                           const support::NamedValues<T>& values) {
    const auto operandsOf = [&](std::size_t i) {
        const std::string& name = values[i].first;
        return std::vector{constant(texts[i]), operand("envvar", name), operand("function", "of " + name)};
    };
    for (std::size_t pair = 0; pair < 9 * texts.size() * texts.size(); ++pair) {
        const std::size_t i = pair / 9 / texts.size(), j = pair / 9 % texts.size();
        const T &one = values[i].second, &two = values[j].second;
        const std::string left = operandsOf(i)[pair % 3], right = operandsOf(j)[pair / 3 % 3];
        const bool expected[] = {one == two, one != two, one > two, one < two, one >= two, one <= two};
        for (std::size_t op = 0; op < 6; ++op) {
            const std::string text(kFilterOperatorTable.texts()[op]);
            EXPECT_EQ(passes(filter(text, type, left, right), kAll), expected[op]) << left << text << right;
        }
    }
}

TEST(FilterParser, ComparesIntegersSignedDoublesExactlyAndStringsByUnsignedBytes) {
    const LogCapture log;
    expectEveryComparison("integer", kIntegers, kAll.int64);
    expectEveryComparison("double", kDoubles, kAll.real);
    expectEveryComparison("string", kStrings, kAll.string);
    EXPECT_TRUE(passes(filter("==\\u0000x", "integer", constant("0"), operand("envvar", "x1")), kAll));
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST(FilterParser, LooksAtTheContextAfterTheEventForAVariableAgainstAConstantOnly) {
    const Attributes three = {.int64 = {{"x", 3}}, .real = {{"x", 3}}, .string = {{"x", "3"}}};
    const Attributes nine = {.int64 = {{"x", 9}}, .real = {{"x", 9}}, .string = {{"x", "9"}}};
    for (const std::string type : {"integer", "double", "string"}) {
        EXPECT_TRUE(passes(filter("==", type, kX, constant("3")), {}, three));
        EXPECT_TRUE(passes(filter("==", type, kX, constant("3")), three, nine));
        EXPECT_TRUE(passes(filter("==", type, kX, operand("envvar", "y")), {}, three));
        EXPECT_TRUE(passes(filter("<=", type, kX, operand("function", "of x1")), {}, three));
        for (const std::string_view op : kFilterOperatorTable.texts()) {
            // Without a value a number fails; a string is empty.
            const bool isBelow = type == "string" && (op == "<" || op == "<=" || op == "!=");
            EXPECT_EQ(passes(filter(std::string(op), type, kX, constant("0")), {}), isBelow) << op;
        }
    }
    EXPECT_TRUE(passes(filter("==", "string", kX, constant("3")), {.string = {{"x", ""}}}, three));
}

TEST(FilterParser, PutsTheFallbackInPlaceOfAnUnknownFunctionAgainstAVariable) {
    for (const std::string type : {"integer", "double", "string"}) {
        const LogCapture log;
        EXPECT_TRUE(passes(filter("==", type, operand("function", "A"), operand("function", "B")), {}));
        EXPECT_TRUE(passes(filter("==", type, operand("function", "C"), kX), {}));
        EXPECT_EQ(log.lines(), errorLines({"Invalid pure function type: A", "Invalid pure function type: B",
                                           "Invalid pure function type: C"}));
    }
    const FilterOperand unknown{FilterOperand::Type::Function, "Nope"};
    EXPECT_EQ(_createIntegerOperandFunction(unknown, registry(), 5)(TestContext({}), TestEvent({})), 5);
    EXPECT_EQ(_createDoubleOperandFunction(unknown, registry(), 0.5)(TestContext({}), TestEvent({})), 0.5);
    EXPECT_EQ(_createStringOperandFunction(unknown, registry(), "none")(TestContext({}), TestEvent({})), "none");
}

TEST(GenericFilter, CallsBothSidesOnEveryEvaluationLeftFirst) {
    std::string calls;
    const auto side = [&calls](char name, double value) {
        return [&calls, name, value](auto&, auto&) {
            calls += name;
            return value;
        };
    };
    std::shared_ptr<Brenta::OS::RulesEngine::Filter> created;
    _createFilter<double>(FilterOperator::NotEqual, side('L', std::nan("")), side('R', 1.0), created);
    EXPECT_TRUE((*created)(TestContext({}), TestEvent({})));
    EXPECT_TRUE((*created)(TestContext({}), TestEvent({})));
    EXPECT_EQ(calls, "LRLR");
}

static_assert(
    std::is_same_v<decltype(kFilterOperatorTable), const Brenta::OS::LookupTable<6, FilterOperator, const char*>>);
static_assert(kFilterOperatorTable.lookup(FilterOperator{5}) == std::string_view("<=") &&
              kFilterOperatorTable.reverseLookup("!=") == FilterOperator::NotEqual &&
              kFilterOperatorTable.texts() == std::array<std::string_view, 6>{"==", "!=", ">", "<", ">=", "<="});

}  // namespace
