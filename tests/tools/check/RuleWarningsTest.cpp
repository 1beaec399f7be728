#include "tools/vig/check/Warnings.h"

#include <gmock/gmock.h>

#include <cmath>
#include <ctime>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tools/vig/document/Registry.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace Brenta::OS::VIG::Tool;
using Strings = std::vector<std::string>;

// "start end Test"
std::string transition(const std::string& way, const Strings& conditions = {}, const std::string& action = {}) {
    std::istringstream words(way);
    std::string from, to, event;
    words >> from >> to >> event;
    return support::transition(from, to, event, support::filters(conditions),
                               action.empty() ? "[]" : R"([{"name":")" + action + "\"}]");
}

std::vector<Finding> warningsOf(const Strings& transitions, const Catalogue& catalogue = Catalogue::builtIn()) {
    const DocumentText document("", support::documentOf(transitions));
    std::vector<Finding> found;
    appendRuleWarnings(modelOf(document, 0), catalogue, libraryRegistry(), found);
    return found;
}

// "name path", without the part of the path that all have.
Strings namesOf(const std::vector<Finding>& found) {
    Strings names;
    for (const Finding& each : found) {
        const std::string path = each.place.path.substr(std::string("configs[0].payload.data.transitions").size());
        names.push_back((each.severity == Severity::Error ? "error " : "") + each.name + " " + path);
    }
    return names;
}

struct Case {
    Strings transitions;
    Strings expected = {};
};

void expectNames(const std::vector<Case>& cases) {
    for (const auto& [transitions, expected] : cases) {
        EXPECT_EQ(namesOf(warningsOf(transitions)), expected) << testing::PrintToString(transitions);
    }
}

std::string memory(const Strings& conditions) {
    return transition("start end ProcessMemoryHeartBeat", conditions);
}

TEST(RuleWarnings, FindsWhatIsWrongWithTheStates) {
    const std::string log = "LogZramHeartBeat";
    const std::string trigger = "TriggerVelora";
    const std::string random = "double PseudoRandomDouble() < =0.1";
    const std::string big = "integer vmRssKB > =10";
    expectNames({
        {{transition("start hto Test"), transition("hot end Test")},
         {"no-way-out [0].to_state", "unreachable-state [1].from_state"}},
        {{transition("a b Test"), transition("b a Test"), transition("end end Test")},
         {"unreachable-state [0].from_state", "unreachable-state [0].to_state", "unreachable-state [2].from_state"}},
        {{transition("start a Test", {big}), transition("a end Test")}},
        {{transition("start start Test")}, {"no-way-out [0].to_state"}},
        {{transition("start a Test"), transition("a a Test", {}, "Test")}},
        {{}},
        {{transition("start a Timeout"), transition("a start Test")}, {"unused-timeout [0].event"}},

        {{memory({}), memory({big})}, {"shadowed-transition [1]"}},
        {{memory({big}), memory({"integer =010 < vmRssKB", big})}, {"shadowed-transition [1]"}},
        {{memory({"integer vmRssKB > vmSwapKB"}), memory({"integer vmSwapKB < vmRssKB"})}, {"shadowed-transition [1]"}},
        {{memory({big}), memory({"string processName == =a", big}), memory({})}, {"shadowed-transition [1]"}},
        {{memory({"double =1 == =1"}), memory({})}, {"always-true [0].filters[0]", "shadowed-transition [1]"}},
        {{memory({big}), memory({"integer vmRssKB >= =10"}), memory({"integer vmSwapKB > =10"})}},
        {{memory({random}), memory({random})}},
        {{memory({big, random}), memory({big})}},
        {{memory({"integer =1 == =2"}), memory({})}, {"never-true [0].filters[0]"}},
        {{memory({}), transition("start end SystemMemoryHeartBeat")}},

        {{transition("start start EnteringState", {}, "Test")}, {"error endless-entering [0]"}},
        {{transition("start a EnteringState"), transition("a b EnteringState"), transition("b a EnteringState")},
         {"error endless-entering [2]"}},
        {{transition("start a EnteringState", {random}), transition("a start EnteringState")},
         {"endless-entering [1]"}},
        {{transition("start end EnteringState", {random}), transition("start start EnteringState", {}, "Test")},
         {"endless-entering [1]"}},
        {{transition("start a EnteringState"), transition("a b EnteringState"), transition("b a Test")}},
        {{transition("start end EnteringState"), transition("start start EnteringState")}, {"shadowed-transition [1]"}},

        {{transition("start start ProcessMemoryHeartBeat", {big}, trigger)}, {"trigger-storm [0].actions[0]"}},
        {{transition("start start ProcessMemoryHeartBeat", {big, random}, trigger)}},
        {{transition("start start ProcessMemoryHeartBeat", {"double PseudoRandomDouble() < =1"}, trigger)},
         {"always-true [0].filters[0]", "trigger-storm [0].actions[0]"}},
        {{transition("start start ZramHeartBeat", {}, log)}},
        {{transition("start start ProcessMemoryHeartBeat", {}, trigger),
          transition("start end EnteringState", {random})}},
        {{transition("start end ProcessMemoryHeartBeat", {}, trigger)}},
    });
}

TEST(RuleWarnings, FindsFiltersThatDecideNothing) {
    const Strings never = {"string =a == =b",
                           "integer =2 < =1",
                           "double =nan == =nan",
                           "integer vmRssKB > =9223372036854775807",
                           "integer =-9223372036854775808 > vmRssKB",
                           "string processName < =",
                           "double cpuAvgUtilization == =nan",
                           "double cpuAvgUtilization > =inf",
                           "double PseudoRandomDouble() < =0",
                           "double PseudoRandomDouble() >= =1",
                           "double =1 == PseudoRandomDouble()",
                           "integer pid != pid",
                           "double cpuAvgUtilization < cpuAvgUtilization"};
    const Strings always = {"string =a != =b",
                            "double =nan != =nan",
                            "string processName >= =",
                            "double PseudoRandomDouble() < =1",
                            "double =-0.5 != PseudoRandomDouble()",
                            "string processName == processName"};
    const Strings neither = {"integer vmRssKB >= =-9223372036854775808",
                             "integer vmRssKB >= =9223372036854775807",
                             "double cpuAvgUtilization != =nan",
                             "double cpuAvgUtilization >= =inf",
                             "string processName > =",
                             "double PseudoRandomDouble() <= =0",
                             "double cpuAvgUtilization == cpuAvgUtilization",
                             "double PseudoRandomDouble() < PseudoRandomDouble()"};
    const auto check = [](const Strings& conditions, const Strings& expected) {
        for (const std::string& each : conditions) {
            const bool ofMemory = each.find("cpu") == std::string::npos && each.find("pid") == std::string::npos;
            const std::string event = ofMemory ? "ProcessMemoryHeartBeat" : "ProcessCpuHeartBeat";
            EXPECT_EQ(namesOf(warningsOf({transition("start end " + event, {each})})), expected) << each;
        }
    };
    check(never, {"never-true [0].filters[0]"});
    check(always, {"always-true [0].filters[0]"});
    check(neither, {});
}

TEST(RuleWarnings, FindsFiltersThatContradictEachOther) {
    const std::vector<Strings> contradictory = {
        {"integer vmRssKB > =10", "integer vmRssKB < =5"},
        {"integer vmRssKB == =1", "integer vmRssKB == =2"},
        {"integer =10 < vmRssKB", "integer =11 > vmRssKB"},
        {"integer vmRssKB >= =1", "integer vmRssKB <= =2", "integer vmRssKB != =1", "integer vmRssKB != =2"},
        {"string processName == =a", "string processName == =b"},
        {"string processName == =a", "string processName != =a"},
        {"string processName > =b", "string processName < =a"},
        {"string processName < =B", "string processName > =a"},
    };
    for (const Strings& each : contradictory) {
        const std::string last = "never-true [0].filters[" + std::to_string(each.size() - 1) + "]";
        EXPECT_EQ(namesOf(warningsOf({memory(each)})), Strings{last}) << testing::PrintToString(each);
    }
    expectNames({
        {{memory({"integer vmRssKB >= =10", "integer vmRssKB <= =10", "integer vmRssKB != =9"})}},
        {{memory({"integer vmRssKB > =5", "integer vmRssKB > =3", "integer vmSwapKB < =1"})}},
        {{memory({"string processName >= =a", "string processName < =b", "string processName != =a"})}},
        {{memory({"double PseudoRandomDouble() < =0.1", "double PseudoRandomDouble() > =0.9"})}},
        {{transition("start end ProcessCpuHeartBeat",
                     {"double cpuAvgUtilization > =0", "double cpuAvgUtilization < =1e-300"})}},
        {{transition("start end ProcessCpuHeartBeat",
                     {"double cpuAvgUtilization >= =0", "double cpuAvgUtilization <= =-0.0",
                      "double cpuAvgUtilization != =0"})},
         {"never-true [0].filters[2]"}},
        {{transition("start end ProcessCpuHeartBeat",
                     {"double cpuAvgUtilization != =nan", "double cpuAvgUtilization != =1"})}},
    });
    const auto found = warningsOf({memory({"integer vmRssKB > =10", "integer =5 > vmRssKB"})});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, "`5 > vmRssKB` contradicts `vmRssKB > 10` in the same transition");
}

TEST(RuleWarnings, FindsNumbersThatAreReadAsOthers) {
    const std::pair<std::string, std::string> read[] = {{"integer =12kB", "12"},
                                                        {"integer =0x10", "0"},
                                                        {"integer =1e3", "1"},
                                                        {"integer =12.9", "12"},
                                                        {"double =1,5", "1"},
                                                        {"double =1 000", "1"},
                                                        {"double =9007199254740993", "9007199254740992"},
                                                        {"double =-0.10000000000000000001", "-0.10000000000000000555"}};
    for (const auto& [constant, number] : read) {
        const std::size_t space = constant.find(' ');
        const std::string type = constant.substr(0, space);
        const auto found = warningsOf({transition("start end Test", {type + " x > " + constant.substr(space + 1)})});
        ASSERT_EQ(namesOf(found), Strings{"number-text [0].filters[0].operand2.value"}) << constant;
        EXPECT_THAT(found[0].message, testing::HasSubstr("read as " + number)) << constant;
    }
    for (const std::string whole :
         {"integer x > = +7", "double x > =0x10", "double x > =-00.10", "double x > =.5", "double x > =12.",
          "double x > =0", "double x > =1e-310", "double x > =-inf", "double x > =9007199254740992", "double x > =007",
          "integer x < =12 ", "integer x < =12\n", "string x == =12kB"}) {
        EXPECT_EQ(namesOf(warningsOf({transition("start end Test", {whole})})), Strings()) << whole;
    }
    expectNames({{{transition("start end Test", {"integer =abc == =99999999999999999999"})},
                  {"never-true [0].filters[0]", "number-text [0].filters[0].operand1.value",
                   "number-text [0].filters[0].operand2.value"}}});
}

TEST(RuleWarnings, FindsAttributesThatEventsDoNotHave) {
    const DocumentText additions("", R"({"extends":"built-in",
        "events":{"ForegroundAppsStats":{"bool":["on"],"int64":["n"],"double":["n"]}},
        "context":{"int64":["limit"],"string":["mode"]}})");
    std::string problem;
    const auto catalogue = Catalogue::read(additions, problem);
    ASSERT_TRUE(catalogue) << problem;
    const std::string cannot = "attributes of the kinds uint64 and bool cannot be compared at all";
    const std::string operand1 = " [0].filters[0].operand1.value";
    const struct {
        std::string event;
        std::string condition;
        std::string expected;
        std::string hint = {};
    } cases[] = {
        {"ProcessMemoryHeartBeat", "integer vmRsKB > =1", "unknown-attribute" + operand1, "did you mean \"vmRssKB\"?"},
        {"SystemMemoryHeartBeat", "integer vmRssKB > =1", "unknown-attribute" + operand1,
         "ProcessMemoryHeartBeat events have it"},
        {"ProcessMemoryHeartBeat", "double vmRssKB > =1", "wrong-kind" + operand1, "write \"value_type\": \"integer\""},
        {"ZramHeartBeat", "integer memUsedMaxBytes > =1", "wrong-kind" + operand1, cannot},
        {"ForegroundAppsStats", "string on == =1", "wrong-kind" + operand1, cannot},
        {"ForegroundAppsStats", "double n > =1", ""},
        {"Test", "integer anything > =1", ""},
        {"Timeout", "integer anything > =1", "unused-timeout [0].event"},
        {"EnteringState", "integer limit > =1", ""},
        {"EnteringState", "integer other > =1", "unknown-attribute" + operand1},
        {"EnteringState", "double limit > =1", "wrong-kind" + operand1},
        {"EnteringState", "integer limit > limit2", "context-ignored" + operand1},
        {"ProcessMemoryHeartBeat", "integer limit < =1", ""},
        {"ProcessMemoryHeartBeat", "integer limit < vmRssKB", "context-ignored" + operand1},
        {"ProcessMemoryHeartBeat", "integer vmSwapKB < vmRssKB", ""},
        {"Test", "string mode == anything", "context-ignored" + operand1},
        {"ProcessMemoryHeartBeat", "integer vmRssKB > PseudoRandomDouble()",
         "function-fallback [0].filters[0].operand2.value", "write \"value_type\": \"double\""},
        {"ProcessCpuHeartBeat", "double cpuAvgUtilization > PseudoRandomDoubl()",
         "function-fallback [0].filters[0].operand2.value", "did you mean \"PseudoRandomDouble\"?"},
        {"ProcessCpuHeartBeat", "double cpuAvgUtilization > PseudoRandomDouble()", ""},
    };
    for (const auto& [event, condition, expected, hint] : cases) {
        const auto found = warningsOf({transition("start end " + event, {condition})}, *catalogue);
        ASSERT_EQ(found.empty() ? "" : namesOf(found)[0], expected) << condition;
        EXPECT_TRUE(hint.empty() || found[0].hint == hint) << condition;
    }
    const std::string missing = "missing-attribute [0].actions[0]";
    expectNames({
        {{transition("start end ZramHeartBeat", {}, "TriggerVelora")}, {missing}},
        {{transition("start end ProcessMemoryHeartBeat", {}, "TriggerVeloraCpu")}, {missing}},
        {{transition("start end ProcessCpuHeartBeat", {}, "LogZramHeartBeat")}, {missing}},
        {{transition("start end EnteringState", {}, "TriggerVelora")}, {missing}},
        {{transition("start end Timeout", {}, "TriggerVeloraCpu")}, {"unused-timeout [0].event", missing}},
        {{transition("start start SystemMemoryHeartBeat", {}, "TriggerVelora")}, {missing}},
        {{transition("start end Test", {}, "TriggerVelora")}},
    });
}

TEST(RuleWarnings, FindsEveryNulThatTheLibraryAccepts) {
    const std::string nul = "\\u0000";
    const std::string test = "start end Test";
    const std::string filter = "nul-character [0].filters[0].";
    expectNames({
        {{transition(test, {"string x ==" + nul + "= =a"})}, {filter + "operator"}},
        {{transition(test, {"integer x >" + nul + "= =1"})}, {filter + "operator"}},
        {{transition(test, {"string x" + nul + " == =a"})}, {filter + "operand1.value"}},
        {{transition(test, {"string =a != x" + nul})}, {filter + "operand2.value"}},
        {{transition(test, {"string x == =" + nul + "a"})}, {filter + "operand2.value"}},
        {{transition(test, {"string =" + nul + " == x"})}, {filter + "operand1.value"}},
        {{transition(test, {"integer x > =1" + nul})}, {"number-text [0].filters[0].operand2.value"}},
        {{transition(test, {"double =1" + nul + "5 < x"})}, {"number-text [0].filters[0].operand1.value"}},
        {{transition(test, {"integer F" + nul + "() < x"})}, {"function-fallback [0].filters[0].operand1.value"}},
        {{transition("start a" + nul + " Test"), transition("a" + nul + " end Test")},
         {"nul-character [0].to_state", "nul-character [1].from_state"}},
        {{transition(test, {"string x == =a\\u0001"})}},
    });
    const auto found = warningsOf({transition(test, {"string x ==" + nul + "= =a"})});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, R"("==\u0000=" is read as "==": what follows the NUL is ignored)");
    EXPECT_EQ(found[0].hint, R"(write "==" if that is meant)");
}

TEST(RuleWarnings, SayWhatIsWrongAndWhatWouldMendIt) {
    const std::string big = "integer vmRssKB > =10";
    const std::string random = "double PseudoRandomDouble() < =0.1";
    const struct {
        Strings transitions;
        std::string message;  // of the first one
        std::string hint;
    } cases[] = {
        {{memory({"string processName == =a"}), memory({big}), memory({big, "integer vmSwapKB > =1"})},
         R"(this never fires: before it in "start" comes transitions[1] on ProcessMemoryHeartBeat, )"
         R"(which fires whenever this one could)",
         "put this one before it, or give that one another filter"},
        {{memory({"string processName == =a"}), memory({}), memory({big})},
         R"(this never fires: before it in "start" comes transitions[1] on ProcessMemoryHeartBeat, )"
         R"(which always fires)",
         "put this one before it"},
        {{transition("start hott Test"), transition("hot end Test")},
         R"(once in "hott", the machine does nothing any more)",
         R"(if that is meant, call the state "end")"},
        {{transition("start a EnteringState", {random}), transition("a b EnteringState"),
          transition("b a EnteringState")},
         R"(EnteringState transitions lead from "a" to "b" to "a", without end: one event makes up )"
         R"(to 1000 moves)",
         "let one of them listen for another event"},
        {{transition("start a EnteringState"), transition("a b EnteringState"), transition("b c EnteringState"),
          transition("c d EnteringState"), transition("d e EnteringState", {random}), transition("e f EnteringState"),
          transition("f a EnteringState"), transition("f start EnteringState")},
         R"(EnteringState transitions lead from "a" to "b" to "c" to "d" to "e" to … to "a", unless )"
         R"(filters say otherwise: one event makes up to 1000 moves)",
         "let one of them listen for another event"},
        {{transition("start start ProcessMemoryHeartBeat", {big}, "TriggerVelora")},
         R"("TriggerVelora" asks for a collection at every ProcessMemoryHeartBeat event that )"
         R"(fulfils the filters, and the machine stays in "start")",
         "move to another state, or add the filter PseudoRandomDouble() < 0.1"},
        {{transition("start end ProcessCpuHeartBeat", {"integer cpuAvgUtilization > =1"})},
         R"("cpuAvgUtilization" is known as double, which a comparison as "integer" never finds)",
         R"(write "value_type": "double")"},
        {{transition("start end ZramHeartBeat", {}, "TriggerVelora")},
         R"("TriggerVelora" needs attributes that ZramHeartBeat events are not known to have: )"
         R"(processName (string), vmRssKB (int64), vmSwapKB (int64))",
         "without them it only logs; listen for another event"},
        {{transition("start end EnteringState", {}, "LogZramHeartBeat")},
         R"("LogZramHeartBeat" needs attributes that EnteringState events are not known to have: )"
         R"(memUsedMaxBytes (uint64), numCompressedDataBytes (uint64))",
         "without them it logs 0; listen for another event"},
        {{transition("start end EnteringState", {"integer limit > limit2"})},
         R"("limit" is looked for in the event alone, where it is not, and reads as 0: only a )"
         R"(comparison with a constant looks at the context)",
         "compare it with a constant"},
        {{memory({"string processName == F()"})},
         R"(there is no function "F" that gives the type "string": it reads as the empty text)",
         ""},
        {{memory({"integer vmRssKB > =12kB"})},
         R"("12kB" is read as 12; "kB" is ignored)",
         R"(write "12" if that is meant)"},
        {{transition("start end Test", {"double x > =1,5"})},
         R"("1,5" is read as 1; ",5" is ignored)",
         R"(the decimal point is ".")"},
        {{transition("start end Test", {"double x > =9007199254740993"})},
         R"("9007199254740993" has more digits than a double holds, and is read as 9007199254740992)",
         R"(write fewer digits, or compare an int64 attribute as "integer")"},
        {{memory({"integer vmRssKB >= =1", "integer vmRssKB <= =2", "integer vmRssKB != =1", "integer vmRssKB != =2"})},
         "`vmRssKB != 2` contradicts the filters before it taken together in the same transition",
         "a transition fires only if all its filters hold: make two transitions for two cases"},
        {{memory({"integer =2 < =1"})},
         "`2 < 1` is never true, being a comparison of two constants",
         "mend the filter, or leave the transition out"},
        {{memory({"string processName >= ="})},
         R"(`processName >= ""` is always true, whatever the event)",
         "leave the filter out"},
    };
    for (const auto& [transitions, message, hint] : cases) {
        const auto found = warningsOf(transitions);
        ASSERT_FALSE(found.empty()) << message;
        EXPECT_EQ(found[0].message, message);
        EXPECT_EQ(found[0].hint, hint);
    }
}

// How long the warnings of a document of such transitions take, in seconds.
double secondsFor(const Strings& transitions) {
    const DocumentText document("", support::documentOf(transitions));
    const ConfigModel model = modelOf(document, 0);
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    std::vector<Finding> found;
    const std::clock_t begin = std::clock();
    appendRuleWarnings(model, catalogue, registry, found);
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

std::string is(const std::string& name, int number) {
    return "integer " + name + " > =" + std::to_string(number);
}

std::string state(const std::string& name, int number) {
    return name + std::to_string(number);
}

// Documents that need much of what is compared with each other, made of `many` transitions or a few more.
const std::pair<const char*, Strings (*)(int many)> kShapes[] = {
    {"a chain",
     [](int many) {
         Strings all;
         for (int i = 0; i < many; ++i) {
             all.push_back(transition((i == 0 ? "start" : state("s", i - 1)) + " " + state("s", i) + " EnteringState"));
         }
         return all;
     }},
    {"cycles through a state with many transitions",
     [](int many) {
         Strings all = {transition("start a EnteringState")};
         for (int i = 0; i < many / 2; ++i) {
             all.push_back(transition("start " + state("s", i) + " Test"));
             all.push_back(transition("a start EnteringState", {is("x", i)}));
         }
         return all;
     }},
    {"cycles through a state with a long name",
     [](int many) {
         const std::string name(static_cast<std::size_t>(many) * 100, 'x');
         Strings all = {transition("start " + name + " EnteringState", {is("x", 1)}),
                        transition(name + " b EnteringState", {is("x", 1)})};
         for (int i = 0; i < many; ++i) {
             all.push_back(transition("b start EnteringState", {is("x", i)}));
         }
         return all;
     }},
    {"transitions with two filters, and with all",
     [](int many) {
         Strings all, allFilters;
         const int side = static_cast<int>(std::sqrt(many));
         for (int i = 0; i < side; ++i) {
             allFilters.push_back(is(state("a", i), 1));
             for (int j = 0; j < side; ++j) {
                 all.push_back(transition("start end Test", {is(state("a", j), 1), is(state("b", i), 1)}));
             }
         }
         for (int i = 0; i < side; ++i) {
             allFilters.back() = is("c", i);
             all.push_back(transition("start end Test", allFilters));
         }
         return all;
     }},
    {"states that nothing leads to, and a long name that they may be meant to have",
     [](int many) {
         Strings all = {transition("start " + std::string(static_cast<std::size_t>(many) * 10, 'x') + " Test")};
         for (int i = 0; i < many; ++i) {
             all.push_back(transition(state("s", i) + " end Test"));
         }
         return all;
     }},
};

TEST(RuleWarnings, OfLargeDocumentsTakeTimeInProportion) {
    constexpr int kMany = 800;
    for (const auto& [name, shape] : kShapes) {
        // 16 is the ratio of the sizes, and 256 were quadratic; the machine may have done something else meanwhile.
        constexpr double kAlways = 0.001;
        double ratio = 256;
        for (int tries = 0; tries < 3 && ratio > 32; ++tries) {
            ratio = secondsFor(shape(16 * kMany)) / (secondsFor(shape(kMany)) + kAlways);
        }
        EXPECT_LE(ratio, 32) << name;
    }
    Strings star;
    for (int i = 0; i < kMany; ++i) {
        star.push_back(memory({"string processName == =" + state("s", i), is("vmRssKB", 1)}));
    }
    star.push_back(star.front());
    EXPECT_EQ(namesOf(warningsOf(star)), Strings{"shadowed-transition [800]"});
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
