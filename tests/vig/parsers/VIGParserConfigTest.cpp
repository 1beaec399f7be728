#include "vig/parsers/VIGParserConfig.h"

#include <gmock/gmock.h>

#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/actions/TestActionFunctionFactory.h"

namespace {

using namespace Brenta::OS::VIG;
using Brenta::OS::RulesEngine::EventType;

const VIGParserConfig kRegistry({{"Test", EventType::Test}}, {{"Test", std::make_shared<TestActionFunctionFactory>()}},
                                {{"f", [] { return 1; }}, {"integer", [] { return 1; }}},
                                {{"f", [] { return 2.0; }}, {"double", [] { return 2.0; }}},
                                {{"f", [] { return "3"; }}, {"string", [] { return "3"; }}},
                                {{"f", [] { return true; }}, {"bool", [] { return true; }}});

// An unknown name must leave the function as it was.
template <typename Value>
void expectFunctions(const std::string& own, const Value& value, const Value& other) {
    for (const std::string name : {"f", "integer", "double", "string", "bool", "F", "f ", ""}) {
        std::function<Value()> function = [other] { return other; };
        const bool known = name == "f" || name == own;
        EXPECT_EQ(kRegistry.getPureFunction(name, function), known) << name;
        EXPECT_EQ(function(), known ? value : other) << name;
    }
}

TEST(ParserConfig, ResolvesANameExactlyAndByItsKindOnly) {
    expectFunctions<std::int64_t>("integer", 1, 7);
    expectFunctions<double>("double", 2.0, 7.0);
    expectFunctions<std::string>("string", "3", "7");
    expectFunctions<bool>("bool", true, false);
    EventType type = EventType::Timeout;
    for (const char* unknown : {"test", "Test ", "", "Timeout"}) {
        EXPECT_FALSE(kRegistry.getEventType(unknown, type)) << unknown;
        EXPECT_EQ(type, EventType::Timeout);
    }
    EXPECT_TRUE(kRegistry.getEventType("Test", type));
    EXPECT_EQ(type, EventType::Test);
}

TEST(ParserConfig, LeavesTheActionAloneWhereTheNameIsUnknownOrTheParametersAreRefused) {
    int calls = 0;
    VIGActionFunction action = [&calls](auto&, auto&) { ++calls; };
    support::TestContext context({});
    const support::LogCapture log;
    EXPECT_FALSE(kRegistry.getActionFunction("test", {1, "x"}, action));
    EXPECT_FALSE(kRegistry.getActionFunction("Test", {1}, action));
    EXPECT_EQ(log.lines(), support::errorLines({"Test Action should not have any parameters.",
                                                "Action Test does not support the given parameters."}));
    action(context, support::TestEvent({}));
    EXPECT_TRUE(kRegistry.getActionFunction("Test", {}, action));
    action(context, support::TestEvent({}));
    EXPECT_EQ(calls, 1);
}

}  // namespace
