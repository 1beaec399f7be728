#include <gmock/gmock.h>

#include <cmath>
#include <ctime>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tools/vig/check/Warnings.h"
#include "tools/vig/document/Registry.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Strings = std::vector<std::string>;

Strings split(const std::string& text, char separator) {
    std::istringstream rest(text);
    Strings parts;
    for (std::string part; std::getline(rest >> std::ws, part, separator);) {
        parts.push_back(part.substr(0, part.find_last_not_of(' ') + 1));
    }
    return parts;
}

std::string expanded(std::string text) {
    const std::pair<std::string, std::string> abbreviations[] = {{"$memory", "start end ProcessMemoryHeartBeat"},
                                                                 {"$cpu", "start end ProcessCpuHeartBeat"},
                                                                 {"$test", "start end Test"},
                                                                 {"$big", "integer vmRssKB > =10"},
                                                                 {"$random", "double PseudoRandomDouble() < =0.1"}};
    for (const auto& [from, to] : abbreviations) {
        for (auto place = text.find(from); place != std::string::npos; place = text.find(from)) {
            text.replace(place, from.size(), to);
        }
    }
    return text;
}

// "start end Test | integer x > =1 & string y == =a | TriggerVelora": conditions and the action may be missing.
std::string transition(const std::string& text) {
    const Strings parts = split(expanded(text), '|');
    const Strings way = split(parts[0], ' ');
    return support::transition(way[0], way[1], way[2], support::filters(split(parts.size() > 1 ? parts[1] : "", '&')),
                               parts.size() > 2 ? R"([{"name":")" + parts[2] + "\"}]" : "[]");
}

std::string documentOf(const std::string& transitions) {
    Strings all;
    for (const std::string& each : split(transitions, ';')) {
        all.push_back(transition(each));
    }
    return support::documentOf(all);
}

std::vector<Finding> warningsOf(const std::string& transitions, const Catalogue& catalogue = Catalogue::builtIn()) {
    const DocumentText document("", documentOf(transitions));
    std::vector<Finding> found;
    appendRuleWarnings(modelOf(document, 0), catalogue, libraryRegistry(), found);
    return found;
}

// "name path; name path", without the part of the path that all have.
std::string namesOf(const std::vector<Finding>& found) {
    std::string names;
    for (const Finding& each : found) {
        names += (names.empty() ? "" : "; ") + std::string(each.severity == Severity::Error ? "error " : "") +
                 each.name + " " + each.place.path.substr(std::string("configs[0].payload.data.transitions").size());
    }
    return names;
}

TEST(RuleWarnings, FindWhatIsWrongInAMachine) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"start hto Test; hot end Test", "no-way-out [0].to_state; unreachable-state [1].from_state"},
        {"a b Test; b a Test; end end Test",
         "unreachable-state [0].from_state; unreachable-state [0].to_state; unreachable-state [2].from_state"},
        {"start a Test | $big; a end Test", ""},
        {"start start Test", "no-way-out [0].to_state"},
        {"start a Test; a a Test || Test", ""},
        {"start a Timeout; a start Test", "unused-timeout [0].event"},

        {"$memory; $memory | $big", "shadowed-transition [1]"},
        {"$memory | $big; $memory | integer =010 < vmRssKB & $big", "shadowed-transition [1]"},
        {"$memory | integer vmRssKB > vmSwapKB; $memory | integer vmSwapKB < vmRssKB", "shadowed-transition [1]"},
        {"$memory | $big; $memory | string processName == =a & $big; $memory", "shadowed-transition [1]"},
        {"$memory | double =1 == =1; $memory", "always-true [0].filters[0]; shadowed-transition [1]"},
        {"$memory | $big; $memory | integer vmRssKB >= =10; $memory | integer vmSwapKB > =10", ""},
        {"$memory | $random; $memory | $random", ""},
        {"$memory | $big & $random; $memory | $big", ""},
        {"$memory | integer =1 == =2; $memory", "never-true [0].filters[0]"},
        {"$memory; start end SystemMemoryHeartBeat", ""},

        {"start start EnteringState || Test", "error endless-entering [0]"},
        {"start a EnteringState; a b EnteringState; b a EnteringState", "error endless-entering [2]"},
        {"start a EnteringState | $random; a start EnteringState", "endless-entering [1]"},
        {"start end EnteringState | $random; start start EnteringState || Test", "endless-entering [1]"},
        {"start a EnteringState; a b EnteringState; b a Test", ""},
        {"start end EnteringState; start start EnteringState", "shadowed-transition [1]"},

        {"start start ProcessMemoryHeartBeat | $big | TriggerVelora", "trigger-storm [0].actions[0]"},
        {"start start ProcessMemoryHeartBeat | $big & $random | TriggerVelora", ""},
        {"start start ProcessMemoryHeartBeat | double PseudoRandomDouble() < =1 | TriggerVelora",
         "always-true [0].filters[0]; trigger-storm [0].actions[0]"},
        {"start start ZramHeartBeat || LogZramHeartBeat", ""},
        {"start start ProcessMemoryHeartBeat || TriggerVelora; start end EnteringState | $random", ""},
        {"$memory || TriggerVelora", ""},

        {"start end ZramHeartBeat || TriggerVelora", "missing-attribute [0].actions[0]"},
        {"$memory || TriggerVeloraCpu", "missing-attribute [0].actions[0]"},
        {"$cpu || LogZramHeartBeat", "missing-attribute [0].actions[0]"},
        {"start end EnteringState || TriggerVelora", "missing-attribute [0].actions[0]"},
        {"start end Timeout || TriggerVeloraCpu", "unused-timeout [0].event; missing-attribute [0].actions[0]"},
        {"start start SystemMemoryHeartBeat || TriggerVelora", "missing-attribute [0].actions[0]"},
        {"$test || TriggerVelora", ""},

        {"$test | string x ==\\u0000= =a", "nul-character [0].filters[0].operator"},
        {"$test | integer x >\\u0000= =1", "nul-character [0].filters[0].operator"},
        {"$test | string x\\u0000 == =a", "nul-character [0].filters[0].operand1.value"},
        {"$test | string =a != x\\u0000", "nul-character [0].filters[0].operand2.value"},
        {"$test | string x == =\\u0000a", "nul-character [0].filters[0].operand2.value"},
        {"$test | string =\\u0000 == x", "nul-character [0].filters[0].operand1.value"},
        {"$test | integer x > =1\\u0000", "number-text [0].filters[0].operand2.value"},
        {"$test | double =1\\u00005 < x", "number-text [0].filters[0].operand1.value"},
        {"$test | integer F\\u0000() < x", "function-fallback [0].filters[0].operand1.value"},
        {"start a\\u0000 Test; a\\u0000 end Test", "nul-character [0].to_state; nul-character [1].from_state"},
        {"$test | string x == =a\\u0001", ""},
    };
    for (const auto& [transitions, expected] : cases) {
        EXPECT_EQ(namesOf(warningsOf(transitions)), expected) << transitions;
    }
}

TEST(RuleWarnings, FindFiltersThatDecideNothing) {
    const std::pair<std::string, Strings> cases[] = {
        {"never-true",
         {"$memory | string =a == =b",
          "$memory | integer =2 < =1",
          "$memory | double =nan == =nan",
          "$memory | integer vmRssKB > =9223372036854775807",
          "$memory | integer =-9223372036854775808 > vmRssKB",
          "$memory | string processName < =",
          "$cpu | double cpuAvgUtilization == =nan",
          "$cpu | double cpuAvgUtilization > =inf",
          "$memory | double PseudoRandomDouble() < =0",
          "$memory | double PseudoRandomDouble() >= =1",
          "$memory | double =1 == PseudoRandomDouble()",
          "$cpu | integer pid != pid",
          "$cpu | double cpuAvgUtilization < cpuAvgUtilization",

          "$memory | $big & integer vmRssKB < =5",
          "$memory | integer vmRssKB == =1 & integer vmRssKB == =2",
          "$memory | integer =10 < vmRssKB & integer =11 > vmRssKB",
          "$memory | integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2",
          "$memory | string processName == =a & string processName == =b",
          "$memory | string processName == =a & string processName != =a",
          "$memory | string processName > =b & string processName < =a",
          "$memory | string processName < =B & string processName > =a",
          "$cpu | double cpuAvgUtilization >= =0 & double cpuAvgUtilization <= =-0.0 & double cpuAvgUtilization != "
          "=0"}},
        {"always-true",
         {"$memory | string =a != =b", "$memory | double =nan != =nan",
          "$memory | string processName >= =", "$memory | double PseudoRandomDouble() < =1",
          "$memory | double =-0.5 != PseudoRandomDouble()", "$memory | string processName == processName"}},
        {"",
         {"$memory | integer vmRssKB >= =-9223372036854775808", "$memory | integer vmRssKB >= =9223372036854775807",
          "$cpu | double cpuAvgUtilization != =nan", "$cpu | double cpuAvgUtilization >= =inf",
          "$memory | string processName > =", "$memory | double PseudoRandomDouble() <= =0",
          "$cpu | double cpuAvgUtilization == cpuAvgUtilization",
          "$cpu | double cpuAvgUtilization != cpuAvgUtilization",
          "$memory | double PseudoRandomDouble() < PseudoRandomDouble()",

          "$memory | integer vmRssKB >= =10 & integer vmRssKB <= =10 & integer vmRssKB != =9",
          "$memory | integer vmRssKB > =5 & integer vmRssKB > =3 & integer vmSwapKB < =1",
          "$memory | string processName >= =a & string processName < =b & string processName != =a",
          "$memory | $random & double PseudoRandomDouble() > =0.9",
          "$cpu | double cpuAvgUtilization > =0 & double cpuAvgUtilization < =1e-300",
          "$cpu | double cpuAvgUtilization != =nan & double cpuAvgUtilization != =1"}},
    };
    for (const auto& [name, transitions] : cases) {
        for (const std::string& each : transitions) {
            const std::string last = " [0].filters[" + std::to_string(split(each, '&').size() - 1) + "]";
            EXPECT_EQ(namesOf(warningsOf(each)), name.empty() ? "" : name + last) << each;
        }
    }
}

TEST(RuleWarnings, FindNumbersThatAreReadAsOthers) {
    const std::pair<std::string, std::string> read[] = {
        {"integer x > =12kB", "12"},
        {"integer x > =0x10", "0"},
        {"integer x > =1e3", "1"},
        {"integer x > =12.9", "12"},
        {"double x > =1,5", "1"},
        {"double x > =1 000", "1"},
        {"double x > =9007199254740993", "9007199254740992"},
        {"double x > =-0.10000000000000000001", "-0.10000000000000000555"}};
    for (const auto& [condition, number] : read) {
        const auto found = warningsOf("$test | " + condition);
        ASSERT_EQ(namesOf(found), "number-text [0].filters[0].operand2.value") << condition;
        EXPECT_THAT(found[0].message, testing::HasSubstr("read as " + number)) << condition;
    }
    for (const std::string whole :
         {"integer x > = +7", "double x > =0x10", "double x > =-00.10", "double x > =.5", "double x > =12.",
          "double x > =0", "double x > =1e-310", "double x > =-inf", "double x > =9007199254740992", "double x > =007",
          "integer x < =12\\t", "integer x < =12\\n", "string x == =12kB"}) {
        EXPECT_EQ(namesOf(warningsOf("$test | " + whole)), "") << whole;
    }
    EXPECT_EQ(namesOf(warningsOf("$test | integer =abc == =99999999999999999999")),
              "never-true [0].filters[0]; number-text [0].filters[0].operand1.value; "
              "number-text [0].filters[0].operand2.value");
}

TEST(RuleWarnings, FindAttributesThatEventsDoNotHave) {
    const DocumentText additions("", R"({"extends":"built-in",
        "events":{"ForegroundAppsStats":{"bool":["on"],"int64":["n"],"double":["n"]}},
        "context":{"int64":["limit"],"string":["mode"]}})");
    std::string problem;
    const auto catalogue = Catalogue::read(additions, problem);
    ASSERT_TRUE(catalogue) << problem;
    const std::string cannot = "attributes of the kinds uint64 and bool cannot be compared at all";
    const std::string operand1 = " [0].filters[0].operand1.value";
    const struct {
        std::string transition;
        std::string expected;
        std::string hint = {};
    } cases[] = {
        {"$memory | integer vmRsKB > =1", "unknown-attribute" + operand1, "did you mean \"vmRssKB\"?"},
        {"start end SystemMemoryHeartBeat | $big", "unknown-attribute" + operand1,
         "ProcessMemoryHeartBeat events have it"},
        {"$memory | double vmRssKB > =1", "wrong-kind" + operand1, "write \"value_type\": \"integer\""},
        {"start end ZramHeartBeat | integer memUsedMaxBytes > =1", "wrong-kind" + operand1, cannot},
        {"start end ForegroundAppsStats | string on == =1", "wrong-kind" + operand1, cannot},
        {"start end ForegroundAppsStats | double n > =1", ""},
        {"$test | integer anything > =1", ""},
        {"start end Timeout | integer anything > =1", "unused-timeout [0].event"},
        {"start end EnteringState | integer limit > =1", ""},
        {"start end EnteringState | integer other > =1", "unknown-attribute" + operand1},
        {"start end EnteringState | double limit > =1", "wrong-kind" + operand1},
        {"$memory | integer limit < =1", ""},
        {"$memory | integer limit < vmRssKB", "context-ignored" + operand1},
        {"$memory | integer vmSwapKB < vmRssKB", ""},
        {"$test | string mode == anything", "context-ignored" + operand1},
        {"$memory | integer vmRssKB > PseudoRandomDouble()", "function-fallback [0].filters[0].operand2.value",
         "write \"value_type\": \"double\""},
        {"$cpu | double cpuAvgUtilization > PseudoRandomDoubl()", "function-fallback [0].filters[0].operand2.value",
         "did you mean \"PseudoRandomDouble\"?"},
        {"$cpu | double cpuAvgUtilization > PseudoRandomDouble()", ""},
    };
    for (const auto& [transition, expected, hint] : cases) {
        const auto found = warningsOf(transition, *catalogue);
        ASSERT_EQ(namesOf(found), expected) << transition;
        EXPECT_TRUE(hint.empty() || found[0].hint == hint) << transition;
    }
}

TEST(RuleWarnings, SayWhatIsWrongAndWhatWouldMendIt) {
    const struct {
        std::string transitions;
        std::string message;  // of the first one
        std::string hint;
    } cases[] = {
        {"$memory | string processName == =a; $memory | $big; $memory | $big & integer vmSwapKB > =1",
         R"(this never fires: before it in "start" comes transitions[1] on ProcessMemoryHeartBeat, )"
         "which fires whenever this one could",
         "put this one before it, or give that one another filter"},
        {"$memory | string processName == =a; $memory; $memory | $big",
         R"(this never fires: before it in "start" comes transitions[1] on ProcessMemoryHeartBeat, which always fires)",
         "put this one before it"},
        {"start hott Test; hot end Test", R"(once in "hott", the machine does nothing any more)",
         R"(if that is meant, call the state "end")"},
        {"start a EnteringState | $random; a b EnteringState; b a EnteringState",
         R"(EnteringState transitions lead from "a" to "b" to "a", without end: one event makes up to 1000 moves)",
         "let one of them listen for another event"},
        {"start a EnteringState; a b EnteringState; b c EnteringState; c d EnteringState; d e EnteringState | $random;"
         "e f EnteringState; f a EnteringState; f start EnteringState",
         R"(EnteringState transitions lead from "a" to "b" to "c" to "d" to "e" to … to "a", unless )"
         "filters say otherwise: one event makes up to 1000 moves",
         "let one of them listen for another event"},
        {"start start ProcessMemoryHeartBeat | $big | TriggerVelora",
         R"("TriggerVelora" asks for a collection at every ProcessMemoryHeartBeat event that fulfils the filters, )"
         R"(and the machine stays in "start")",
         "move to another state, or add the filter PseudoRandomDouble() < 0.1"},
        {"$cpu | integer cpuAvgUtilization > =1",
         R"("cpuAvgUtilization" is known as double, which a comparison as "integer" never finds)",
         R"(write "value_type": "double")"},
        {"start end ZramHeartBeat || TriggerVelora",
         R"("TriggerVelora" needs attributes that ZramHeartBeat events are not known to have: )"
         "processName (string), vmRssKB (int64), vmSwapKB (int64)",
         "without them it only logs; listen for another event"},
        {"start end EnteringState || LogZramHeartBeat",
         R"("LogZramHeartBeat" needs attributes that EnteringState events are not known to have: )"
         "memUsedMaxBytes (uint64), numCompressedDataBytes (uint64)",
         "without them it logs 0; listen for another event"},
        {"start end EnteringState | integer limit > limit2",
         R"("limit" is looked for in the event alone, where it is not, and reads as 0: only a )"
         "comparison with a constant looks at the context",
         "compare it with a constant"},
        {"$memory | string processName == F()",
         R"(there is no function "F" that gives the type "string": it reads as the empty text)", ""},
        {"$memory | integer vmRssKB > =12kB", R"("12kB" is read as 12; "kB" is ignored)",
         R"(write "12" if that is meant)"},
        {"$test | double x > =1,5", R"("1,5" is read as 1; ",5" is ignored)", R"(the decimal point is ".")"},
        {"$test | double x > =9007199254740993",
         R"("9007199254740993" has more digits than a double holds, and is read as 9007199254740992)",
         R"(write fewer digits, or compare an int64 attribute as "integer")"},
        {"$memory | $big & integer =5 > vmRssKB", "`5 > vmRssKB` contradicts `vmRssKB > 10` in the same transition",
         "a transition fires only if all its filters hold: make two transitions for two cases"},
        {"$memory | integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2",
         "`vmRssKB != 2` contradicts the filters before it taken together in the same transition",
         "a transition fires only if all its filters hold: make two transitions for two cases"},
        {"$memory | integer =2 < =1", "`2 < 1` is never true, being a comparison of two constants",
         "mend the filter, or leave the transition out"},
        {"$memory | string processName >= =", R"(`processName >= ""` is always true, whatever the event)",
         "leave the filter out"},
        {"$test | string x ==\\u0000= =a", R"("==\u0000=" is read as "==": what follows the NUL is ignored)",
         R"(write "==" if that is meant)"},
    };
    for (const auto& [transitions, message, hint] : cases) {
        const auto found = warningsOf(transitions);
        ASSERT_FALSE(found.empty()) << message;
        EXPECT_EQ(found[0].message, message);
        EXPECT_EQ(found[0].hint, hint);
    }
}

// The text `many` times, each time with another number for "#".
std::string repeated(int many, const std::string& text) {
    std::string all;
    for (int i = 0; i < many; ++i) {
        for (const char each : text) {
            all += each == '#' ? std::to_string(i) : std::string(1, each);
        }
    }
    return all;
}

// Two filters each, which are drawn from `side` on either side.
std::string grid(int side) {
    std::string all;
    for (int i = 0; i < side; ++i) {
        all += repeated(side, "$test | integer a# > =1 & integer b" + std::to_string(i) + " > =1;");
    }
    return all;
}

// Documents that need much of what is compared with each other, made of `many` transitions or a few more.
const std::pair<const char*, std::string (*)(int many)> kShapes[] = {
    {"a chain",
     [](int many) {
         std::string all = "start s0 EnteringState;";
         for (int i = 1; i < many; ++i) {
             all += "s" + std::to_string(i - 1) + " s" + std::to_string(i) + " EnteringState;";
         }
         return all;
     }},
    {"cycles through a state with many transitions",
     [](int many) {
         return "start a EnteringState;" + repeated(many / 2, "start s# Test; a start EnteringState | integer x > =#;");
     }},
    {"cycles through a state with a long name",
     [](int many) {
         const std::string name(static_cast<std::size_t>(many) * 100, 'x');
         return "start " + name + " EnteringState | integer x > =1;" + name + " b EnteringState | integer x > =1;" +
                repeated(many, "b start EnteringState | integer x > =#;");
     }},
    {"transitions with two filters, and with all",
     [](int many) {
         const int side = static_cast<int>(std::sqrt(many));
         const std::string most = "$test | " + repeated(side - 1, "integer a# > =1 &");
         return grid(side) + repeated(side, most + "integer c > =#;");
     }},
    {"states that nothing leads to, and a long name that they may be meant to have",
     [](int many) {
         return "start " + std::string(static_cast<std::size_t>(many) * 10, 'x') + " Test;" +
                repeated(many, "s# end Test;");
     }},
};

// Returns for how many seconds the warnings of such a document are looked for.
double secondsFor(const std::string& transitions) {
    const DocumentText document("", documentOf(transitions));
    const ConfigModel model = modelOf(document, 0);
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    std::vector<Finding> found;
    const std::clock_t begin = std::clock();
    appendRuleWarnings(model, catalogue, registry, found);
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

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
    EXPECT_EQ(namesOf(warningsOf(repeated(kMany, "$memory | string processName == =s# & $big;") +
                                 "$memory | string processName == =s0 & $big")),
              "shadowed-transition [800]");
    // The earlier transition comes late among those that share a filter, and is found all the same.
    EXPECT_EQ(warningsOf(grid(40) + grid(40)).size(), 1600U);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
