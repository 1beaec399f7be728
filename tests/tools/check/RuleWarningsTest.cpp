#include <gmock/gmock.h>

#include <cmath>
#include <ctime>
#include <regex>
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
                                                                 {"$random", "double PseudoRandomDouble() < =0.1"},
                                                                 {"$left", "[0].filters[0].operand1.value"},
                                                                 {"$right", "[0].filters[0].operand2.value"}};
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

// A machine and, behind "->", what is found in it. Behind "?" may follow the message and the hint of the first one.
constexpr const char* kMachines = R"(
-> nothing
start hto Test; hot end Test -> no-way-out [0].to_state; unreachable-state [1].from_state
  ? once in "hto", the machine does nothing any more: if that is meant, call the state "end"
a b Test; b a Test; end end Test
    -> unreachable-state [0].from_state; unreachable-state [0].to_state; unreachable-state [2].from_state
  ? no chain of transitions leads from "start" to "a": lead a transition there, or leave it out
start a Test | $big; a end Test -> nothing
start start Test -> no-way-out [0].to_state
start a Test; a a Test || Test -> nothing
start a Timeout; a start Test -> unused-timeout [0].event

$memory | string processName == =a; $memory; $memory | $big -> shadowed-transition [2]
  ? this never fires: before it in "start" comes transitions[1] on ProcessMemoryHeartBeat, which always fires:
    put this one before it
$memory | $big; $memory | integer =010 < vmRssKB & $big -> shadowed-transition [1]
  ? this never fires: before it in "start" comes transitions[0] on ProcessMemoryHeartBeat, which fires whenever
    this one could: put this one before it, or give that one another filter
$memory | integer vmRssKB > vmSwapKB; $memory | integer vmSwapKB < vmRssKB -> shadowed-transition [1]
$memory | $big; $memory | string processName == =a & $big; $memory -> shadowed-transition [1]
$memory | double =1 == =1; $memory -> always-true [0].filters[0]; shadowed-transition [1]
$memory | $big; $memory | integer vmRssKB >= =10; $memory | integer vmSwapKB > =10 -> nothing
$memory | $random; $memory | $random -> nothing
$memory | $big & $random; $memory | $big -> nothing
$memory | integer =1 == =2; $memory -> never-true [0].filters[0]
$memory; start end SystemMemoryHeartBeat -> nothing

start start EnteringState || Test -> error endless-entering [0]
start a EnteringState; a b EnteringState; b a EnteringState -> error endless-entering [2]
start a EnteringState | $random; a start EnteringState -> endless-entering [1]
start a EnteringState | $random; a b EnteringState; b a EnteringState -> error endless-entering [2]
  ? EnteringState transitions lead from "a" to "b" to "a", without end: one event makes up to 1000 moves:
    let one of them listen for another event
start a EnteringState; a b EnteringState; b c EnteringState; c d EnteringState; d e EnteringState | $random;
    e f EnteringState; f a EnteringState -> endless-entering [6]
  ? EnteringState transitions lead from "a" to "b" to "c" to "d" to "e" to … to "a", unless filters say otherwise:
    one event makes up to 1000 moves: let one of them listen for another event
start end EnteringState | $random; start start EnteringState || Test -> endless-entering [1]
start a EnteringState; a b EnteringState; b a Test -> nothing
start end EnteringState; start start EnteringState -> shadowed-transition [1]

start start ProcessMemoryHeartBeat | $big | TriggerVelora -> trigger-storm [0].actions[0]
  ? "TriggerVelora" asks for a collection at every ProcessMemoryHeartBeat event that fulfils the filters, and the
    machine stays in "start": move to another state, or add the filter PseudoRandomDouble() < 0.1
start start ProcessMemoryHeartBeat | $big & $random | TriggerVelora -> nothing
start start ProcessMemoryHeartBeat | double PseudoRandomDouble() < =1 | TriggerVelora
    -> always-true [0].filters[0]; trigger-storm [0].actions[0]
start start ZramHeartBeat || LogZramHeartBeat -> nothing
start start ProcessMemoryHeartBeat || TriggerVelora; start end EnteringState | $random -> nothing
$memory || TriggerVelora -> nothing

start end ZramHeartBeat || TriggerVelora -> missing-attribute [0].actions[0]
  ? "TriggerVelora" needs attributes that ZramHeartBeat events are not known to have: processName (string),
    vmRssKB (int64), vmSwapKB (int64): without them it only logs; listen for another event
$memory || TriggerVeloraCpu -> missing-attribute [0].actions[0]
$cpu || LogZramHeartBeat -> missing-attribute [0].actions[0]
  ? "LogZramHeartBeat" needs attributes that ProcessCpuHeartBeat events are not known to have: memUsedMaxBytes (uint64),
    numCompressedDataBytes (uint64): without them it logs 0; listen for another event
start end EnteringState || TriggerVelora -> missing-attribute [0].actions[0]
start end Timeout || TriggerVeloraCpu -> unused-timeout [0].event; missing-attribute [0].actions[0]
start start SystemMemoryHeartBeat || TriggerVelora -> missing-attribute [0].actions[0]
$test || TriggerVelora -> nothing

$test | string x ==\u0000= =a -> nul-character [0].filters[0].operator
  ? "==\u0000=" is read as "==": what follows the NUL is ignored: write "==" if that is meant
$test | integer x >\u0000= =1 -> nul-character [0].filters[0].operator
$test | string x\u0000 == =a -> nul-character $left
$test | string =a != x\u0000 -> nul-character $right
$test | string x == =\u0000a -> nul-character $right
$test | string =\u0000 == x -> nul-character $left
$test | integer x > =1\u0000 -> number-text $right
$test | double =1\u00005 < x -> number-text $left
$test | integer F\u0000() < x -> function-fallback $left
start a\u0000 Test; a\u0000 end Test -> nul-character [0].to_state; nul-character [1].from_state
$test | string x == =a\u0001 -> nothing

$memory | integer vmRsKB > =1 -> unknown-attribute $left
  ? ProcessMemoryHeartBeat events are not known to have an attribute "vmRsKB": did you mean "vmRssKB"?
start end SystemMemoryHeartBeat | $big -> unknown-attribute $left
  ? SystemMemoryHeartBeat events are not known to have an attribute "vmRssKB": ProcessMemoryHeartBeat events have it
$memory | double vmRssKB > =1 -> wrong-kind $left
  ? "vmRssKB" is known as int64, which a comparison as "double" never finds: write "value_type": "integer"
start end ZramHeartBeat | integer memUsedMaxBytes > =1 -> wrong-kind $left
  ? "memUsedMaxBytes" is known as uint64, which a comparison as "integer" never finds: attributes of the kinds uint64
    and bool cannot be compared at all
start end ForegroundAppsStats | string on == =1 -> wrong-kind $left
start end ForegroundAppsStats | double n > =1 -> nothing
$test | integer anything > =1 -> nothing
start end Timeout | integer anything > =1 -> unused-timeout [0].event
start end EnteringState | integer limit > =1 -> nothing
start end EnteringState | integer other > =1 -> unknown-attribute $left
start end EnteringState | double limit > =1 -> wrong-kind $left
start end EnteringState | integer limit > limit2 -> context-ignored $left; context-ignored $right
  ? "limit" is looked for in the event alone, where it is not, and reads as 0: only a comparison with a constant looks
    at the context: compare it with a constant
$memory | integer limit < =1 -> nothing
$memory | integer limit < vmRssKB -> context-ignored $left
$memory | integer vmSwapKB < vmRssKB -> nothing
$test | string mode == anything -> context-ignored $left
$memory | integer vmRssKB > PseudoRandomDouble() -> function-fallback $right
  ? there is no function "PseudoRandomDouble" that gives the type "integer": it reads as 0: write "value_type": "double"
$memory | string processName == F() -> function-fallback $right
  ? there is no function "F" that gives the type "string": it reads as the empty text
$cpu | double cpuAvgUtilization > PseudoRandomDoubl() -> function-fallback $right
  ? there is no function "PseudoRandomDoubl" that gives the type "double": it reads as 0: did you mean
    "PseudoRandomDouble"?
$cpu | double cpuAvgUtilization > PseudoRandomDouble() -> nothing

$test | integer =abc == =99999999999999999999 -> never-true [0].filters[0]; number-text $left; number-text $right
$test | integer x > =12kB -> number-text $right
  ? "12kB" is read as 12; "kB" is ignored: write "12" if that is meant
$test | double x > =1,5 -> number-text $right
  ? "1,5" is read as 1; ",5" is ignored: the decimal point is "."
$test | double x > =9007199254740993 -> number-text $right
  ? "9007199254740993" has more digits than a double holds, and is read as 9007199254740992: write fewer digits, or
    compare an int64 attribute as "integer"
$memory | $big & integer =5 > vmRssKB -> never-true [0].filters[1]
  ? `5 > vmRssKB` contradicts `vmRssKB > 10` in the same transition: a transition fires only if all its filters hold:
    make two transitions for two cases
$memory | integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2
    -> never-true [0].filters[3]
  ? `vmRssKB != 2` contradicts the filters before it taken together in the same transition: a transition fires only if
    all its filters hold: make two transitions for two cases
$memory | integer =2 < =1 -> never-true [0].filters[0]
  ? `2 < 1` is never true, being a comparison of two constants: mend the filter, or leave the transition out
$memory | string processName >= = -> always-true [0].filters[0]
  ? `processName >= ""` is always true, whatever the event: leave the filter out
)";

TEST(RuleWarnings, SayWhatIsWrongAndWhatWouldMendIt) {
    const DocumentText additions("", R"({"extends":"built-in",
        "events":{"ForegroundAppsStats":{"bool":["on"],"int64":["n"],"double":["n"]}},
        "context":{"int64":["limit"],"string":["mode"]}})");
    std::string problem;
    const auto catalogue = Catalogue::read(additions, problem);
    ASSERT_TRUE(catalogue) << problem;
    for (const std::string& row : split(std::regex_replace(kMachines, std::regex("\n +"), " "), '\n')) {
        const auto arrow = row.find("-> "), mark = row.find(" ? ");
        const std::string names = row.substr(arrow + 3, mark - arrow - 3);
        const auto found = warningsOf(row.substr(0, arrow), *catalogue);
        EXPECT_EQ(namesOf(found), names == "nothing" ? "" : expanded(names)) << row;
        if (mark != std::string::npos && !found.empty()) {
            EXPECT_EQ(found[0].message + (found[0].hint.empty() ? "" : ": ") + found[0].hint, row.substr(mark + 3));
        }
    }
}

TEST(RuleWarnings, FindFiltersThatDecideNothing) {
    const std::pair<std::string, std::string> cases[] = {{"never-true", R"(
            string =a == =b; integer =2 < =1; double =nan == =nan; integer vmRssKB > =9223372036854775807;
            integer =-9223372036854775808 > vmRssKB; string processName < =; double cpuAvgUtilization == =nan;
            double cpuAvgUtilization > =inf; double PseudoRandomDouble() < =0; double PseudoRandomDouble() >= =1;
            double =1 == PseudoRandomDouble(); integer pid != pid; double cpuAvgUtilization < cpuAvgUtilization;
            $big & integer vmRssKB < =5; integer vmRssKB == =1 & integer vmRssKB == =2;
            integer =10 < vmRssKB & integer =11 > vmRssKB; string processName == =a & string processName == =b;
            integer vmRssKB >= =1 & integer vmRssKB <= =2 & integer vmRssKB != =1 & integer vmRssKB != =2;
            string processName == =a & string processName != =a; string processName > =b & string processName < =a;
            string processName < =B & string processName > =a;
            double cpuAvgUtilization >= =0 & double cpuAvgUtilization <= =-0.0 & double cpuAvgUtilization != =0)"},
                                                         {"always-true", R"(
            string =a != =b; double =nan != =nan; string processName >= =; double PseudoRandomDouble() < =1;
            double =-0.5 != PseudoRandomDouble(); string processName == processName)"},
                                                         {"", R"(
            integer vmRssKB >= =-9223372036854775808; integer vmRssKB >= =9223372036854775807;
            double cpuAvgUtilization != =nan; double cpuAvgUtilization >= =inf; string processName > =;
            double PseudoRandomDouble() <= =0; double cpuAvgUtilization == cpuAvgUtilization;
            double cpuAvgUtilization != cpuAvgUtilization; double PseudoRandomDouble() < PseudoRandomDouble();
            integer vmRssKB >= =10 & integer vmRssKB <= =10 & integer vmRssKB != =9;
            integer vmRssKB > =5 & integer vmRssKB > =3 & integer vmSwapKB < =1;
            string processName >= =a & string processName < =b & string processName != =a;
            $random & double PseudoRandomDouble() > =0.9;
            double cpuAvgUtilization > =0 & double cpuAvgUtilization < =1e-300;
            double cpuAvgUtilization != =nan & double cpuAvgUtilization != =1)"}};
    for (const auto& [name, conditions] : cases) {
        for (const std::string& each : split(conditions, ';')) {
            const bool ofMemory = each.find("cpu") == std::string::npos && each.find("pid") == std::string::npos;
            const std::string last = " [0].filters[" + std::to_string(split(each, '&').size() - 1) + "]";
            EXPECT_EQ(namesOf(warningsOf((ofMemory ? "$memory | " : "$cpu | ") + each)),
                      name.empty() ? "" : name + last)
                << each;
        }
    }
}

TEST(RuleWarnings, FindNumbersThatAreReadAsOthers) {
    for (const std::string row : {"integer 12kB -> 12", "integer 0x10 -> 0", "integer 1e3 -> 1", "integer 12.9 -> 12",
                                  "double 1,5 -> 1", "double 1 000 -> 1", "double 9007199254740993 -> 9007199254740992",
                                  "double -0.10000000000000000001 -> -0.10000000000000000555"}) {
        const auto space = row.find(' '), arrow = row.find(" -> ");
        const auto found =
            warningsOf("$test | " + row.substr(0, space) + " x > =" + row.substr(space + 1, arrow - space - 1));
        ASSERT_EQ(namesOf(found), expanded("number-text $right")) << row;
        EXPECT_THAT(found[0].message, testing::HasSubstr("read as " + row.substr(arrow + 4))) << row;
    }
    for (const std::string whole :
         {"integer x > = +7", "double x > =0x10", "double x > =-00.10", "double x > =.5", "double x > =12.",
          "double x > =0", "double x > =1e-310", "double x > =-inf", "double x > =9007199254740992", "double x > =007",
          "integer x < =12\\t", "integer x < =12\\n", "string x == =12kB"}) {
        EXPECT_EQ(namesOf(warningsOf("$test | " + whole)), "") << whole;
    }
}

// Returns the text `many` times, each time with another number for "#" and the next one for "@".
std::string repeated(int many, const std::string& text) {
    std::string all;
    for (int i = 0; i < many; ++i) {
        for (const char each : text) {
            all += each == '#' ? std::to_string(i) : each == '@' ? std::to_string(i + 1) : std::string(1, each);
        }
    }
    return all;
}

// Returns transitions with two filters each, in all combinations of `side` on either side.
std::string grid(int side) {
    std::string all;
    for (int i = 0; i < side; ++i) {
        all += repeated(side, "$test | integer a# > =1 & integer b" + std::to_string(i) + " > =1;");
    }
    return all;
}

// Documents that need much of what is compared with each other, made of `many` transitions or a few more.
const std::pair<const char*, std::string (*)(int many)> kShapes[] = {
    {"a chain", [](int many) { return "start s0 EnteringState;" + repeated(many, "s# s@ EnteringState;"); }},
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
