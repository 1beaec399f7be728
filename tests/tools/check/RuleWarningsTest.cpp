#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using Strings = std::vector<std::string>;

// Returns the text `many` times, each time with another number for "#" and the next one for "@".
Strings repeated(int many, const std::string& text) {
    Strings all(static_cast<std::size_t>(many));
    for (int i = 0; i < many; ++i) {
        for (const char each : text) {
            all[static_cast<std::size_t>(i)] += each == '#'   ? std::to_string(i)
                                                : each == '@' ? std::to_string(i + 1)
                                                              : std::string(1, each);
        }
    }
    return all;
}

Strings operator+(Strings all, const Strings& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::string onTest(const Strings& conditions) {
    return support::transition("start", "end", "Test", support::filters(conditions), R"([{"name":"Test"}])");
}

std::string entering(const std::string& from, const std::string& to, const Strings& conditions = {}) {
    return support::transition(from, to, "EnteringState", support::filters(conditions));
}

// Returns transitions with two filters each, in all combinations of `side` on either side.
Strings grid(int side) {
    Strings all;
    for (const std::string& each : repeated(side, "integer b# > =1")) {
        all = std::move(all) + repeated(side, onTest({"integer a# > =1", each}));
    }
    return all;
}

// Documents that need much of what is compared with each other, made of `many` transitions or a few more.
const std::pair<const char*, Strings (*)(int many)> kShapes[] = {
    {"a chain", [](int many) { return Strings{entering("start", "s0")} + repeated(many, entering("s#", "s@")); }},
    {"cycles through a state with many transitions",
     [](int many) {
         return Strings{entering("start", "a")} + repeated(many / 2, support::transition("start", "s#", "Test")) +
                repeated(many / 2, entering("a", "start", {"integer x > =#"}));
     }},
    {"cycles through a state with a long name",
     [](int many) {
         const std::string name(static_cast<std::size_t>(many) * 100, 'x');
         return Strings{entering("start", name, {"integer x > =1"}), entering(name, "b", {"integer x > =1"})} +
                repeated(many, entering("b", "start", {"integer x > =#"}));
     }},
    {"one transition again and again",
     [](int many) {
         return Strings{onTest({"integer a > =1", "integer b > =1"})} +
                repeated(many, onTest({"integer a > =1", "integer b > =1"}));
     }},
    {"states with a storm, of some of which a number is missing",
     [](int many) {
         const std::string trigger = R"([{"name":"TriggerVelora"}])";
         const std::string event = "ProcessMemoryHeartBeat";
         const int side = static_cast<int>(std::sqrt(many / 4));
         Strings all;
         // A state with a way to each of the others would be tried for each of them.
         for (const std::string& each : repeated(side, "#")) {
             const std::string from = "s" + each + "-#";
             const std::string to = "t" + each + "-#";
             const auto x = support::filters({"integer x > =" + each, "integer y > =1"});
             all = std::move(all) +
                   Strings{support::transition("start", each, event, support::filters({"integer x == =" + each}))} +
                   repeated(side, support::transition(each, from, event, support::filters({"integer x == =#"}))) +
                   repeated(side, support::transition(from, to, event, x, trigger)) +
                   repeated(side, support::transition(from, "start", event)) +
                   repeated(side, support::transition(to, from, event));
         }
         return all;
     }},
    {"shares that are drawn twice",
     [](int many) {
         const auto share = support::filters({"double PseudoRandomDouble() < =0.00#1"});
         return repeated(many, support::transition("start", "a#", "Test", share)) +
                repeated(many, support::transition("a#", "end", "Test", share, R"([{"name":"Test"}])"));
     }},
    {"states that nothing leads to, and a long name that they may be meant to have",
     [](int many) {
         return Strings{support::transition("start", std::string(static_cast<std::size_t>(many) * 10, 'x'), "Test")} +
                repeated(many, support::transition("s#", "end", "Test"));
     }},
};

// Returns the warnings of the document, and adds for how many seconds they are looked for.
std::vector<Finding> warningsOf(const Strings& transitions, double& seconds) {
    const DocumentText document("", support::documentOf(transitions));
    const auto registry = libraryRegistry();
    const auto catalogue = Catalogue::builtIn();
    const std::clock_t begin = std::clock();
    std::vector<Finding> found = findingsIn(document, registry, catalogue).all;
    seconds += static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    return found;
}

TEST(RuleWarnings, OfLargeDocumentsTakeTimeInProportion) {
    constexpr int kMany = 200;
    for (const auto& [name, shape] : kShapes) {
        // 16 is the ratio of the sizes, and 256 were quadratic; the machine may have done something else meanwhile.
        double ratio = 256;
        for (int tries = 0; tries < 3 && ratio > 32; ++tries) {
            double small = 0.001, large = 0;
            warningsOf(shape(kMany), small);
            warningsOf(shape(16 * kMany), large);
            ratio = large / small;
        }
        EXPECT_LE(ratio, 32) << name;
    }
    double ignored = 0;
    const auto found = warningsOf(repeated(kMany, onTest({"string x == =s#", "integer y > =1"})) +
                                      Strings{onTest({"string x == =s0", "integer y > =1"})},
                                  ignored);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].name + found[0].place.path, "shadowed-transitionconfigs[0].payload.data.transitions[200]");
    EXPECT_EQ(warningsOf(grid(16) + grid(16), ignored).size(), 256U);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
