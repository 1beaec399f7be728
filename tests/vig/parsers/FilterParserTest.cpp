#include "vig/parsers/FilterParser.h"

#include <gmock/gmock.h>

#include <cmath>

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

// "One" to "Three" in every type that a filter can name, "Half" for doubles only.
VIGParserConfig registry() {
    return VIGParserConfig({}, {}, {{"One", [] { return 1; }}, {"Two", [] { return 2; }}, {"Three", [] { return 3; }}},
                           {{"One", [] { return 1.0; }},
                            {"Two", [] { return 2.0; }},
                            {"Three", [] { return 3.0; }},
                            {"Half", [] { return 0.5; }}},
                           {{"One", [] { return "1"; }}, {"Two", [] { return "2"; }}, {"Three", [] { return "3"; }}},
                           {{"Half", [] { return true; }}});
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
            for (const std::string& source : {kX, operand("function", "One")}) {
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

TEST(FilterParser, ComparesEveryPairOfOperandsByEveryOperator) {
    struct {
        std::string text;
        bool expected[3];  // for 1, 2 and 3 on the left of 2
    } const operators[] = {{"==", {false, true, false}}, {"!=", {true, false, true}}, {">", {false, false, true}},
                           {"<", {true, false, false}},  {">=", {false, true, true}}, {"<=", {true, true, false}}};
    // Under names that no function has.
    const Attributes event = {.int64 = {{"x1", 1}, {"x2", 2}, {"x3", 3}},
                              .real = {{"x1", 1}, {"x2", 2}, {"x3", 3}},
                              .string = {{"x1", "1"}, {"x2", "2"}, {"x3", "3"}}};
    const auto operands = [](int number) {
        const std::string text = std::to_string(number);
        const char* const function = number == 1 ? "One" : number == 2 ? "Two" : "Three";
        return std::vector{constant(text), operand("envvar", "x" + text), operand("function", function)};
    };
    const LogCapture log;
    for (const auto& [op, expected] : operators) {
        for (int all = 0; all < 3 * 3 * 3 * 3; ++all) {
            const int number = all % 3;
            const std::string left = operands(number + 1)[all / 3 % 3], two = operands(2)[all / 9 % 3];
            const std::string type = std::array{"integer", "double", "string"}[all / 27];
            EXPECT_EQ(passes(filter(op, type, left, two), event), expected[number]) << left << op << two;
            EXPECT_EQ(passes(filter(op, type, two, left), event), expected[2 - number]) << two << op << left;
        }
    }
    EXPECT_TRUE(passes(filter("==\\u0000x", "integer", constant("2"), operand("envvar", "x2")), event));
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST(FilterParser, LooksAtTheContextForAVariableAgainstAConstantOnly) {
    const Attributes three = {.int64 = {{"x", 3}}, .real = {{"x", 3}}, .string = {{"x", "3"}}};
    for (const std::string type : {"integer", "double", "string"}) {
        EXPECT_TRUE(passes(filter("==", type, kX, constant("3")), {}, three));
        EXPECT_TRUE(passes(filter("==", type, kX, operand("envvar", "y")), {}, three));
        EXPECT_TRUE(passes(filter("<", type, kX, operand("function", "One")), {}, three));
        EXPECT_EQ(passes(filter("!=", type, kX, constant("3")), {}), type == "string");
    }
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
