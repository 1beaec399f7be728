#include "vig/parsers/VIGFiniteStateMachineParser.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <regex>
#include <type_traits>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Slots.h"
#include "tests/support/TestEvent.h"
#include "tests/vig/parsers/Json.h"
#include "vig/actions/TestActionFunctionFactory.h"
#include "vig/base/Log.h"
#include "vig/parsers/VIGParserConfig.h"

namespace {

using namespace Brenta::OS::VIG;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using support::LogCapture;
using support::machine;
using support::transition;
using testing::ElementsAre;
using testing::IsEmpty;

// Accepts any parameters and writes them down; its action writes its number.
class RecordingFactory : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override {
        std::string& text = asked.emplace_back();
        for (const VIGActionParameter& each : parameters) {
            text += text.empty() ? "(" : ",";
            text += each.index() == 0   ? fmt::format("integer {}", std::get<0>(each))
                    : each.index() == 1 ? fmt::format("double {}", std::get<1>(each))
                                        : "string " + std::get<2>(each);
        }
        text += text.empty() ? "" : ")";
        return [this, number = asked.size()](auto&, auto&) { ran.push_back(number); };
    }

    mutable std::vector<std::string> asked;
    mutable std::vector<std::size_t> ran;
};

// Tells when its machine is destroyed.
struct LoudContext : support::TestContext {
    LoudContext() : WithAttributes({}) {}
    ~LoudContext() override { VIG_LOG_ERROR("destroyed"); }
};

class MachineParserTest : public testing::Test {
  protected:
    // "Test" refuses parameters, what `recordKey` names does not.
    VIGParseResult<FiniteStateMachine> parse(const Json::Value& value, const std::string& recordKey) {
        const auto test = std::make_shared<TestActionFunctionFactory>();
        const VIGParserConfig config({{"Test", EventType::Test}, {"EnteringState", EventType::EnteringState}},
                                     {{"Test", test}, {"Test(integer)", test}, {recordKey, factory}}, {}, {}, {}, {},
                                     [this] {
                                         contexts.push_back(new LoudContext);
                                         return std::unique_ptr<LoudContext>(contexts.back());
                                     });
        return VIGFiniteStateMachineParser().parse(value, config);
    }

    // Every refusal ends with the line of the whole machine, and then the machine goes.
    void expectRefused(const Json::Value& value, std::vector<std::string> messages) {
        const LogCapture log;
        contexts.clear();
        const auto result = parse(value, "Record");
        EXPECT_EQ(result.error, VIGParseError::InvalidFsm);
        EXPECT_EQ(result.value, nullptr);
        messages.push_back("Invalid FSM JSON: " + value.toStyledString() + ".");
        messages.insert(messages.end(), contexts.size(), "destroyed");
        EXPECT_EQ(log.lines(), support::errorLines(messages));
    }

    std::unique_ptr<FiniteStateMachine> expectAccepted(const Json::Value& value,
                                                       const std::string& recordKey = "Record") {
        const LogCapture log;
        auto result = parse(value, recordKey);
        EXPECT_EQ(result.error, VIGParseError::Ok);
        EXPECT_THAT(log.lines(), IsEmpty());
        return std::move(result.value);
    }

    const std::shared_ptr<RecordingFactory> factory = std::make_shared<RecordingFactory>();
    std::vector<LoudContext*> contexts;
    const LogCapture unread;
};

Json::Value withAction(const std::string& action) {
    return json(machine({transition("start", "end", "Test", "[]", "[" + action + "]")}));
}

Json::Value withParameters(const std::string& parameters) {
    return withAction(R"({"name":"Record","parameters":)" + parameters + "}");
}

TEST_F(MachineParserTest, RefusesAMachineOrATransitionOfTheWrongShapeWithoutALineOfItsOwn) {
    for (const char* text : {"null", "[]", "3", R"("x")", "{}", R"({"transitions":null})", R"({"transitions":{}})"}) {
        expectRefused(json(text), {});
    }
    EXPECT_THAT(contexts, IsEmpty());
    for (const char* text : {"null", "3", "[]", R"("x")"}) {
        expectRefused(json(machine({transition("start", "end", "Test"), text})), {});
    }
    const Json::Value good = json(transition("start", "end", "Test"));
    for (const std::string key : {"from_state", "to_state", "event", "filters", "actions"}) {
        for (const char* value : {"", "null", "1", "true", "{}", key.back() == 's' ? R"("x")" : "[]"}) {
            expectRefused(json(machine({with(good, key, value).toStyledString()})), {});
        }
    }
}

TEST_F(MachineParserTest, ReportsTheFirstFaultOfATransitionAndReadsNoFurther) {
    const std::string record = R"([{"name":"Record"},{"name":"Nope"},{"name":"Record"}])";
    const std::pair<std::string, std::string> cases[] = {
        {transition("start", "end", "Heartbeat"), "FSM Event not found!"},
        {transition("start", "end", "test"), "FSM Event not found!"},
        {transition("start", "end", "Heartbeat", R"([{"operator":"=>"},1])", record), "Invalid operator string: =>."},
        {transition("start", "end", "Heartbeat", "[]", record), "FSM Action (Nope) not found!"}};
    for (const auto& [bad, message] : cases) {
        expectRefused(json(machine({transition("start", "end", "Test"), bad, "1"})), {message});
    }
    EXPECT_THAT(factory->asked, ElementsAre(""));
}

TEST_F(MachineParserTest, RefusesABadActionWithItsMessages) {
    for (const char* action : {"1", "null", "[]", "{}", R"({"name":null})", R"({"name":1,"parameters":[1]})"}) {
        expectRefused(withAction(action), shown({"Invalid action JSON: {}."}, json(action)));
    }
    expectRefused(withAction(R"({"name":"test"})"), {"FSM Action (test) not found!"});
    expectRefused(withAction(R"({"name":"Test\u0000x"})"), {"FSM Action (Test) not found!"});
    expectRefused(withAction(R"({"name":"Test","parameters":[]})"), {"FSM Action (Test()) not found!"});
    expectRefused(withAction(R"({"name":"A","parameters":[{"type":"double","value":"1"},{"type":"string"}]})"),
                  {"FSM Action (A(double,string)) not found!"});
    expectRefused(
        withAction(R"({"name":"Test","parameters":[{"type":"integer","value":"3"}]})"),
        {"Test Action should not have any parameters.", "Action Test(integer) does not support the given parameters.",
         "FSM Action (Test(integer)) not found!"});
}

TEST_F(MachineParserTest, RefusesABadParameterWithoutAskingForTheAction) {
    const std::pair<std::string, std::vector<std::string>> types[] = {
        {"int", {R"({"type":"int","value":"3"})", R"({"type":"int","value":{}})"}},
        {"Double", {R"({"type":"Double","value":"3"})"}},
        {"1", {R"({"type":1})"}},
        {"", {R"({"value":"3"})", R"({"type":null})"}},
        {"{}", {R"({"type":["integer"],"value":"3"})", R"({"type":"string","value":{}})", R"("integer")", "null"}}};
    for (const auto& [shownType, parameters] : types) {
        for (const std::string& parameter : parameters) {
            expectRefused(withParameters("[" + parameter + "]"),
                          shown({"Invalid action parameter type: " + shownType + "."}, json(parameter)));
        }
    }
    const std::pair<std::string, std::vector<std::string>> values[] = {
        {"integer", {"99999999999", "2147483648", "-2147483649", "9999999999999999999", "abc", "", "true"}},
        {"double", {"1e999", "-1e999", "1e-400", "abc", ""}}};
    for (const auto& [type, texts] : values) {
        for (const std::string& text : texts) {
            expectRefused(withParameters(R"([{"type":")" + type + R"(","value":")" + text + R"("}])"),
                          {"Invalid value for an action parameter of type " + type + ": " + text + "."});
        }
        expectRefused(withParameters(R"([{"type":")" + type + R"("}])"),
                      {"Invalid value for an action parameter of type " + type + ": ."});
    }
    EXPECT_THAT(factory->asked, IsEmpty());
}

TEST_F(MachineParserTest, AsksForAnActionByItsNameAndParameterTypes) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"", {"null", R"({"type":"integer","value":"3"})"}},
        {"()", {"[]"}},
        {"(integer 12,string cpu)", {R"([{"type":"integer","value":"12s"},{"type":"string","value":"cpu"}])"}},
        {"(integer 3)", {R"([{"type":"integer","value":3}])", R"([{"type":"integer","value":3.7}])"}},
        {"(integer 2147483647)", {R"([{"type":"integer","value":" \t2147483647"}])"}},
        {"(integer -2147483648)", {R"([{"type":"integer","value":"-2147483648"}])"}},
        {"(double 0.5)", {R"([{"type":"double","value":"0.5x"}])", R"([{"type":"double","value":0.5}])"}},
        {"(double -inf)", {R"([{"type":"double","value":"-inf"}])"}},
        {"(double 1e-310)", {R"([{"type":"double","value":"1e-310"}])", R"([{"type":"double","value":1e-310}])"}},
        {"(string )", {R"([{"type":"string"}])", R"([{"type":"string","value":null}])"}},
        {"(string false)", {R"([{"type":"string","value":false}])"}},
        {"(string 18446744073709551615)", {R"([{"type":"string","value":18446744073709551615}])"}},
    };
    for (const auto& [expected, all] : cases) {
        for (const std::string& parameters : all) {
            // The key has the types only.
            factory->asked.clear();
            expectAccepted(withParameters(parameters),
                           "Record" + std::regex_replace(expected, std::regex(" [^,)]*"), ""));
            EXPECT_THAT(factory->asked, ElementsAre(std::string_view(expected) == "()" ? "" : expected));
        }
    }
}

TEST_F(MachineParserTest, BuildsAMachineThatIsNotStartedWithItsContextAndItsTransitionsAndActionsInOrder) {
    const auto empty = expectAccepted(json(R"({"transitions":[],"other":1})"));
    EXPECT_THAT(empty->getAllListeningEventTypes(), IsEmpty());
    const auto parsed = expectAccepted(json(machine(
        {transition("start", "", "EnteringState"),
         transition("", "", "Test", support::filters({"integer x == =1"}), R"([{"name":"Record"},{"name":"Test"}])"),
         transition("", "idle", "Test", "[]", R"([{"name":"Record"},{"name":"Record"}])"),
         transition("", "end", "Test")})));
    EXPECT_THAT(contexts, ElementsAre(empty->getContext(), parsed->getContext()));
    EXPECT_EQ(parsed->getCurrentState()->getName(), "start");
    parsed->start();
    parsed->onEvent(support::TestEvent({.int64 = {{"x", 1}}}));
    parsed->onEvent(support::TestEvent({}));
    EXPECT_THAT(factory->ran, ElementsAre(1U, 2U, 3U));
    EXPECT_EQ(parsed->getCurrentState()->getName(), "idle");
}

// Clients are compiled against this order.
TEST(ParserInterfaces, HaveTheirOperationBehindTheDestructor) {
    EXPECT_EQ(support::slotOf(&VIGIParser<FiniteStateMachine>::parse), 2U);
    EXPECT_EQ(support::slotOf(&VIGActionFunctionFactory::get), 2U);
}

static_assert(!std::is_polymorphic_v<VIGParserConfig>);
static_assert(!std::is_copy_constructible_v<VIGParseResult<int>> && std::is_move_constructible_v<VIGParseResult<int>>);
static_assert(std::is_same_v<VIGActionParameter, std::variant<std::int32_t, double, std::string>>);

}  // namespace
