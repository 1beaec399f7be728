#include "vig/parsers/VIGParserConfig.h"

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"
#include "vig/actions/TestActionFunctionFactory.h"

namespace {

using namespace Brenta::OS::VIG;
using Brenta::OS::RulesEngine::EventType;

TEST(ParserConfig, ResolvesANameExactlyAndByItsKindOnlyAndLeavesAllElseAlone) {
    const VIGParserConfig registry({{"Test", EventType::Test}},
                                   {{"Test", std::make_shared<TestActionFunctionFactory>()}}, {{"f", [] { return 1; }}},
                                   {{"f", [] { return 2.0; }}}, {{"s", [] { return "3"; }}},
                                   {{"f", [] { return true; }}});
    std::function<std::int64_t()> integer;
    std::function<double()> real;
    std::function<std::string()> text;
    std::function<bool()> boolean;
    EXPECT_TRUE(registry.getPureFunction("f", integer) && registry.getPureFunction("f", real) &&
                registry.getPureFunction("s", text) && registry.getPureFunction("f", boolean));
    for (const char* unknown : {"s", "F", "f ", "Test", ""}) {
        EXPECT_FALSE(registry.getPureFunction(unknown, integer) || registry.getPureFunction(unknown, real) ||
                     registry.getPureFunction(unknown, boolean) || registry.getPureFunction("f", text));
    }
    EXPECT_TRUE(integer() == 1 && real() == 2.0 && text() == "3" && boolean());
    EventType type = EventType::Timeout;
    EXPECT_FALSE(registry.getEventType("test", type) || type != EventType::Timeout);
    EXPECT_TRUE(registry.getEventType("Test", type) && type == EventType::Test);
    VIGActionFunction action;
    const support::LogCapture log;
    EXPECT_FALSE(registry.getActionFunction("test", {1, "x"}, action) ||
                 registry.getActionFunction("Test", {1}, action));
    EXPECT_EQ(log.lines(), support::errorLines({"Test Action should not have any parameters.",
                                                "Action Test does not support the given parameters."}));
    EXPECT_TRUE(!action && registry.getActionFunction("Test", {}, action) && action);
}

}  // namespace
