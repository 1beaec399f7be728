#include "tools/vig/test/TestCommand.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/PeakMemory.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::documentOf;
using support::filters;
using support::linesWith;
using support::runVerb;
using support::ToolResult;
using support::transition;

const std::string kLog = R"([{"name":"LogZramHeartBeat"}])";
const std::string kTrigger = R"([{"name":"TriggerVelora"}])";

const std::string kRules =
    documentOf({transition("start", "hot", "ProcessMemoryHeartBeat", filters({"integer vmRssKB > =9"}), kTrigger),
                transition("hot", "start", "Test"), transition("start", "start", "ZramHeartBeat", "[]", kLog)});

const std::string kCamera =
    R"({"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":10,"vmSwapKB":1}})";
const std::string kSmall =
    R"({"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":8,"vmSwapKB":1}})";

std::string testCase(const std::string& name, const std::string& events, const std::string& expect) {
    return fmt::format("{{\"name\":\"{}\",\"events\":[{}],\"expect\":{{{}}}}}", name, events, expect);
}

class TestCommand : public testing::Test {
  protected:
    ToolResult run(const std::string& tests) { return runText(R"({"rules":"rules.json","tests":[)" + tests + "]}"); }

    ToolResult runText(const std::string& text) {
        folder.write("rules.json", kRules);
        options.files = {folder.write("a.test.json", text)};
        return runVerb(test, options);
    }

    const support::TemporaryFolder folder;
    TestOptions options;
};

TEST_F(TestCommand, EachExpectationPassesOrFails) {
    const std::string zram = R"({"event":"ZramHeartBeat"})";
    const std::string missing = R"("moves":1,"log":["Missing required attribute processName in event."])";
    const std::string logLine = "Received VIG zram heart beat. memUsedMaxBytes: 0, numCompressedDataBytes: 0";
    const struct {
        std::string events;
        std::string expect;
        bool passes;
    } cases[] = {
        {kCamera, R"("triggers":[{}])", true},
        {kCamera,
         R"("triggers":[{"name":"vig:memory_heartbeat_over_budget:camera","process":"camera","config":7,)"
         R"("event":1,"metadata_contains":["vmRssKB:10","vmSwapKB:1"]}],"moves":1,"states":{"7":"hot"})",
         true},
        {kCamera,
         R"("triggers":[{"metadata":["threshold_current_value:11","threshold_units:RSS_anon_plus_swap_KB",)"
         R"("vmRssKB:10","vmSwapKB:1","processName:camera"]}])",
         true},
        {kCamera, R"("triggers":[{"metadata":["vmRssKB:10"]}])", false},
        {kCamera, R"("triggers":[{"metadata_contains":["vmRssKB:11"]}])", false},
        {kCamera, R"("triggers":[{"event":2}])", false},
        {kCamera, R"("triggers":[{"config":8}])", false},
        {kCamera, R"("triggers":[{},{}])", false},
        {kCamera, "", false},
        {kCamera, R"("triggers":[{}],"moves":2)", false},
        {kCamera, R"("triggers":[{}],"states":{"7":"start"})", false},
        {kCamera, R"("triggers":[{}],"states":{"8":"start"})", false},
        {zram, R"("log":[")" + logLine + "\"]", true},
        {zram, R"("log":[{"message":")" + logLine + R"(","priority":"info"}])", true},
        {zram, R"("log":[{"message":")" + logLine + R"(","priority":"error"}])", false},
        {zram, "", false},
        {kSmall, "", true},
        {R"({"event":"ProcessMemoryHeartBeat"})", missing + R"(},"context":{"int64":{"vmRssKB":10})", true},
        {R"({"event":"ProcessMemoryHeartBeat"})", missing + R"(},"context":{)", false},
    };
    for (const auto& each : cases) {
        const ToolResult result = run(testCase("t", each.events, each.expect));
        EXPECT_EQ(result.status, each.passes ? 0 : 1) << each.expect << result.out;
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(TestCommand, FailureShowsExpectedAgainstActualAndWhy) {
    const ToolResult result =
        run("\n" + testCase("missing", kSmall + "," + kSmall, R"("triggers":[{"config":7}])") + ",\n" +
            testCase("other", kCamera, R"("triggers":[{"config":7,"process":"x"}],"moves":2)") + "," +
            testCase("good", kSmall, ""));
    const std::string file = options.files[0];
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "FAIL  " + file + R"(:2: missing
      triggers: expected 1 (-), got 0 (+)
        -  config 7
      why not configs[0].payload.data.transitions[0] (start -> hot on ProcessMemoryHeartBeat)
              2 events
              2   for which it was tried
              2     stopped by vmRssKB > 9, at the nearest 8 > 9 (off by 2) in event 1
              0     fired
FAIL  )" + file + R"(:3: other
      triggers: expected 1 (-), got 1 (+)
        -  process "x"
        +  process "camera"  (event 1)
      moves: expected 2, got 1
        +  config 7  start -> hot  (event 1)
      event 1: ProcessMemoryHeartBeat in state start
        configs[0].payload.data.transitions[0] -> hot: fires
          yes   vmRssKB > 9  10 > 9
          runs  TriggerVelora
FAIL  )" + file + R"(: 1 of 3 passed
3 tests: 1 passed, 2 failed
)");
}

// Explained is, of several machines, the one that did what was not expected or did not do what was.
TEST_F(TestCommand, FailureIsExplainedByTheMachineInQuestion) {
    const std::string hot =
        transition("start", "hot", "ProcessMemoryHeartBeat", filters({"integer vmRssKB > =9"}), kTrigger);
    const std::string path = ".payload.data.transitions";
    folder.write("two.json",
                 support::document({support::config(7, {hot, transition("start", "start", "ZramHeartBeat", "[]", kLog),
                                                        transition("hot", "hot", "Test")}),
                                    support::config(8, {hot, transition("hot", "start", "Test")})}));
    const struct {
        std::string events;
        std::string expect;
        std::vector<std::string> explained;  // the beginnings of all lines that name a transition
    } cases[] = {
        {kSmall, R"("triggers":[{"config":8}])", {"why not configs[1]" + path + "[0] ("}},
        {kSmall, R"("triggers":[{}])", {"why not configs[0]" + path + "[0] (", "why not configs[1]" + path + "[0] ("}},
        {kSmall, R"("log":["x"])", {"why not configs[0]" + path + "[1] ("}},
        {kSmall, R"("states":{"8":"hot"})", {"why not configs[1]" + path + "[0] ("}},
        {kCamera,
         R"("triggers":[{"config":7},{"config":8,"process":"x"}])",
         {"  configs[1]" + path + "[0] -> hot: fires"}},
        {kCamera, R"("triggers":[{"config":7},{"config":7}])", {"  configs[1]" + path + "[0] -> hot: fires"}},
        {R"({"event":"ZramHeartBeat"})", R"("triggers":[{"config":8}])", {"why not configs[1]" + path + "[0] ("}},
        {R"({"event":"ZramHeartBeat"})", "", {"  configs[0]" + path + "[1] -> start: fires"}},
        {kSmall, R"("states":{"7":"hot"})", {"why not configs[0]" + path + "[0] ("}},
        {R"({"event":"ProcessMemoryHeartBeat"})",
         R"(},"context":{"int64":{"vmRssKB":10})",
         {"  configs[0]" + path + "[0] -> hot: fires", "  configs[1]" + path + "[0] -> hot: fires"}},
    };
    for (const auto& [events, expect, explained] : cases) {
        const ToolResult result = runText(R"({"rules":"two.json","tests":[)" + testCase("t", events, expect) + "]}");
        std::vector<std::string> lines;
        for (const std::string& line : linesWith(result.out, "      ")) {
            if (line.find("configs[") != std::string::npos) {
                lines.push_back(line.substr(6));
            }
        }
        ASSERT_EQ(lines.size(), explained.size()) << expect << result.out;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_TRUE(lines[i].starts_with(explained[i])) << lines[i];
        }
    }
}

TEST_F(TestCommand, ExplanationDrawsAsTheTestDid) {
    const std::string half = filters({"double PseudoRandomDouble() > =0.5"});
    folder.write("random.json", documentOf({transition("start", "start", "ZramHeartBeat", half, kLog)}));
    int failed = 0;
    for (int seed = 0; seed < 12; ++seed) {
        const ToolResult result = runText(
            R"({"rules":"random.json","tests":[{"name":"t","events":[{"event":"ZramHeartBeat"}],"expect":{},"seed":)" +
            std::to_string(seed) + "}]}");
        failed += result.status;
        EXPECT_EQ(result.out.find(" -> start: fires\n") != std::string::npos, result.status == 1) << result.out;
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, 12);
}

// Numbers from the first of each pair up to the second.
using Ranges = std::vector<std::pair<int, int>>;

std::string each(const Ranges& ranges, std::string_view format) {
    std::vector<std::string> all;
    for (const auto& [begin, end] : ranges) {
        for (int i = begin; i < end; ++i) {
            all.push_back(fmt::format(fmt::runtime(format), i));
        }
    }
    return support::joined(all);
}

TEST_F(TestCommand, ListsAreAlignedSoThatFewThingsDiffer) {
    const struct {
        Ranges expected;
        Ranges actual;
        std::size_t asExpected;
        std::size_t missing;     // rows that begin with "-"
        std::size_t unexpected;  // with "+"
        std::size_t more = 0;    // that are not shown
    } cases[] = {
        {{{1, 4}}, {{1, 2}, {3, 4}}, 2, 1, 0},
        {{{1, 2}, {3, 4}}, {{1, 4}}, 2, 0, 1},
        {{{1, 4}}, {{1, 2}, {4, 5}, {3, 4}}, 2, 1, 1},
        {{{1, 4}}, {{3, 4}}, 1, 2, 0},
        {{}, {{1, 3}}, 0, 0, 2},
        {{{1, 3}}, {}, 0, 2, 0},
        {{{1, 6}}, {{3, 6}, {1, 3}}, 3, 2, 2},
        {{{0, 600}}, {{0, 300}, {305, 600}}, 595, 5, 0},
        {{{0, 300}, {305, 600}}, {{0, 600}}, 595, 0, 5},
        {{{0, 600}}, {{0, 10}, {1000, 1002}, {10, 600}}, 600, 0, 2},
        {{{0, 600}}, {{120, 600}, {1000, 1001}}, 480, 20, 0, 101},
        {{{0, 1200}}, {{0, 1200}}, 0, 0, 0},
        {{}, {{0, 1200}}, 0, 0, 20, 1180},
    };
    for (const auto& [expected, actual, asExpected, missing, unexpected, more] : cases) {
        const std::string events = each(actual, R"({{"event":"ZramHeartBeat","uint64":{{"memUsedMaxBytes":{}}}}})");
        const std::string lines =
            each(expected, R"("Received VIG zram heart beat. memUsedMaxBytes: {}, numCompressedDataBytes: 0")");
        const ToolResult result = run(testCase("t", events, R"("log":[)" + lines + "]"));
        const bool differs = missing + unexpected > 0;
        EXPECT_EQ(result.status, differs ? 1 : 0);
        const auto tells = [&](const std::string& what) { return result.out.find(what) != std::string::npos; };
        EXPECT_EQ(tells(fmt::format("          {} as expected\n", asExpected)), differs && asExpected > 0)
            << result.out;
        EXPECT_EQ(tells(fmt::format("          and {} more\n", more)), more > 0) << result.out;
        EXPECT_EQ(linesWith(result.out, "        -  message").size(), missing) << result.out;
        EXPECT_EQ(linesWith(result.out, "        +  message").size(), unexpected) << result.out;
    }
}

TEST_F(TestCommand, LongListsTakeLittleMemory) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    folder.write("rules.json",
                 documentOf({transition("start", "a", "Test", "[]", kLog), transition("a", "a", "Test", "[]", kLog),
                             transition("a", "a", "EnteringState", "[]", kLog)}));
    // The machine goes round a thousand times at each event.
    const std::vector<std::string> events(40, R"({"event":"Test"})");
    const std::vector<std::string> lines(2000, "\"0\"");
    const std::string rules = R"({"rules":"rules.json","tests":[)";
    folder.write("cycle.json",
                 rules + testCase("t", support::joined(events), R"("log":[)" + support::joined(lines) + "]") + "]}");
    folder.write("small.json", rules + testCase("t", "", "") + "]}");
    const auto memoryFor = [&](const char* file) {
        return support::peakMemory([&] {
            options.files = {folder.path(file)};
            runVerb(test, options);
        });
    };
    constexpr std::size_t kMegabyte = 1 << 20;
    EXPECT_LT(memoryFor("cycle.json"), memoryFor("small.json") + 16 * kMegabyte);
}

TEST_F(TestCommand, WhatHasBeenFoundIsToldWhateverBecomesOfTheNextFile) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    folder.write("rules.json", kRules);
    folder.write("large.json", R"({"configs":[],"x":[0)" + std::string(40'000'000, ',') + "]}");
    const std::string tests = R"(","tests":[{"name":"a","events":[],"expect":{}}]})";
    options.files = {folder.write("a.test.json", R"({"rules":"rules.json)" + tests),
                     folder.write("b.test.json", R"({"rules":"large.json)" + tests)};
    const support::MemoryFile out;
    support::peakMemory([&] {
        std::set_new_handler([] { _exit(0); });
        const rlimit limit = {std::size_t{64} << 20, std::size_t{64} << 20};
        setrlimit(RLIMIT_DATA, &limit);
        const Interruption interruption;
        test(options, {STDIN_FILENO, out.descriptor, STDERR_FILENO}, interruption);
        _exit(1);
    });
    EXPECT_EQ(out.content(), "ok    " + options.files[0] + ": 1 of 1 passed\n");
}

TEST_F(TestCommand, OfLongTextsIsShownWhereTheyDiffer) {
    const std::string name(1'000'000, 'x');
    const std::string event = R"({"event":"ProcessMemoryHeartBeat","string":{"processName":")" + name +
                              R"(end"},"int64":{"vmRssKB":10,"vmSwapKB":1}})";
    const ToolResult result =
        run(testCase(name, event, R"("triggers":[{"process":")" + name + R"(END"}],"states":{"7":")" + name + "\"}"));
    const std::string cut = "process …" + std::string(40, 'x');
    EXPECT_EQ(linesWith(result.out, "        -  " + cut + "END\"").size(), 1U) << result.out.substr(0, 2000);
    EXPECT_EQ(linesWith(result.out, "        +  " + cut + "end\"  (event 1)").size(), 1U);
    EXPECT_EQ(
        linesWith(result.out, "      state of configuration 7: expected \"" + name.substr(0, 499) + "…, got \"hot\"")
            .size(),
        1U);
    EXPECT_LT(result.out.size(), 4000U);
}

TEST_F(TestCommand, CoverageTellsWhatNoTestReaches) {
    options.coverage = true;
    const std::string rules = folder.path("rules.json");
    const ToolResult result = run(testCase("a", kSmall + "," + kSmall, ""));
    EXPECT_EQ(result.out,
              "ok    " + options.files[0] + ": 1 of 1 passed\n" + rules +
                  ":1:62: never fired: start -> hot on ProcessMemoryHeartBeat "
                  "[configs[0].payload.data.transitions[0]]\n" +
                  rules + ":1:145: never true: vmRssKB > 9 [configs[0].payload.data.transitions[0].filters[0]]\n" +
                  rules + ":1:314: never fired: hot -> start on Test [configs[0].payload.data.transitions[1]]\n" +
                  rules +
                  ":1:395: never fired: start -> start on ZramHeartBeat [configs[0].payload.data.transitions[2]]\n"
                  "coverage  " +
                  rules + ": 20.0 % (transitions fired 0/3, filter outcomes seen 1/2)\n1 test: 1 passed, 0 failed\n");
    options.coverageMin = 20;
    EXPECT_EQ(run(testCase("a", kSmall, "")).status, 0);
    options.coverageMin = 20.1;
    EXPECT_EQ(run(testCase("a", kSmall, "")).status, 1);
}

TEST_F(TestCommand, WhatIsNotPartOfATestFileIsAnErrorAtItsPlace) {
    const auto broken = [](const std::string& members) {
        return R"({"rules":"rules.json","tests":[{"name":"a","events":[],"expect":{},)" + members + "}]}";
    };
    const auto expecting = [](const std::string& members) {
        return R"({"rules":"","tests":[{"name":"a","events":[],"expect":{)" + members + "}}]}";
    };
    const std::pair<std::string, std::string> cases[] = {
        {R"({"rules":"a","rules":"b","tests":[]})", ":1:14: error: Duplicate key: 'rules'"},
        {"{} x", ":1:4: error: Extra non-whitespace after JSON value."},
        {R"({"tests":[]})", R"(:1:1: error: "rules" is missing)"},
        {R"({"rules":"","tests":[]})", ":1:21: error: tests: there is no test"},
        {R"({"rules":1,"tests":{}})", ":1:10: error: rules: expected a string, got a number"},
        {R"({"rules":"","tests":[7]})", ":1:22: error: tests[0]: expected an object, got a number"},
        {broken(R"("seed":-1)"), ":1:75: error: tests[0].seed: expected an integer from 0 to 4294967295"},
        {broken(R"("context":{"int":{}})"),
         R"(:1:85: error: tests[0].context: unknown key "int"; did you mean "int64"?)"},
        {broken(R"("context":{"int64":{"a":"b"}})"),
         R"(:1:78: error: tests[0].context: int64.a: expected a signed 64-bit integer, got "b")"},
        {R"({"rules":"","tests":[{"name":"a","events":[{"event":"Tst"}],"expect":{}}]})",
         R"(:1:44: error: tests[0].events[0]: event: unknown event "Tst"; did you mean "Test"?)"},
        {expecting(R"("log":[{"priority":"inf","message":null}])"),
         ":1:91: error: tests[0].expect.log[0].message: expected a string, got null"},
        {expecting(R"("log":["\udc00"])"), ":1:63: error: tests[0].expect.log[0]: invalid UTF-8"},
        {expecting(R"("states":{"x":"end"})"),
         R"(:1:70: error: tests[0].expect.states: expected the id of a configuration as key, got "x")"},
        {R"({"rules":"","tests":[{"name":"a","events":[],"expect":{}},{"name":"a","events":[],"expect":{}}]})",
         R"(:1:67: error: tests[1].name: there is another test "a")"},
        {R"({"rules":"","tests":[{"name":"a","events":"absent","expect":{}}]})",
         ":1:43: error: tests[0].events: " + folder.path("absent").string() + ": No such file or directory\n"},
        {std::string(2000, '['), ":1:1001: error: "},
    };
    for (const auto& [text, error] : cases) {
        const ToolResult result = runText(text);
        EXPECT_EQ(result.status, 2) << text;
        EXPECT_TRUE(result.err.starts_with(options.files[0] + error)) << result.err;
        EXPECT_EQ(result.out, "");
    }
}

TEST_F(TestCommand, OfAFileThatIsAllMistakesAHundredAreShown) {
    folder.write("bad.jsonl", "{");
    std::vector<std::string> tests(200, "0");
    tests[100] = R"({"name":"a","events":"bad.jsonl","expect":{}})";
    const ToolResult result = runText(R"({"rules":"","tests":[)" + support::joined(tests) + "]}");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 101);
    EXPECT_NE(result.err.find(": tests[99]: "), std::string::npos);
    EXPECT_TRUE(result.err.ends_with(options.files[0] + ": error: has more mistakes than the 100 shown\n"))
        << result.err;
}

// A pipe can be read but once, and a file may be saved between two tests.
TEST_F(TestCommand, RulesAreReadOnceForAllTestsAndExplanations) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], kRules.data(), kRules.size()), static_cast<ssize_t>(kRules.size()));
    close(ends[1]);
    const std::string begin = R"({"rules":"/proc/self/fd/)" + std::to_string(ends[0]) + R"(","tests":[)";
    options.files = {
        folder.write("a.test.json", begin + testCase("a", kCamera, R"("triggers":[{}])") + "]}"),
        folder.write("b.test.json", begin + testCase("b", kCamera, "") + "," + testCase("c", kSmall, "") + "]}")};
    const ToolResult result = runVerb(test, options);
    close(ends[0]);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(linesWith(result.out, "        configs[0].payload.data.transitions[0] -> hot: fires").size(), 1U)
        << result.out;
    EXPECT_TRUE(result.out.ends_with("3 tests: 2 passed, 1 failed\n")) << result.out;
}

TEST_F(TestCommand, RulesThatAreRefusedOrAbsentAreTold) {
    const std::string tests = R"(","tests":[{"name":"a","events":[],"expect":{}}]})";
    folder.write("bad.json", documentOf({transition("a", "b", "test")}));
    options.junitFile = folder.path("report.xml");
    const ToolResult refused = runText(R"({"rules":"bad.json)" + tests.substr(0, tests.size() - 2) +
                                       R"(,{"name":"b","events":[],"expect":{}}]})");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.out.ends_with("2 tests: 0 passed, 2 failed\n")) << refused.out;
    // The library may say much of the document; it is told once.
    const std::string report = folder.read("report.xml");
    EXPECT_EQ(linesWith(report, "    <testcase ").size(), 2U) << report;
    EXPECT_EQ(linesWith(report, "  FSM Event not found!").size(), 1U) << report;
    options.junitFile.clear();
    EXPECT_TRUE(refused.err.starts_with(folder.path("bad.json").string() +
                                        ": error: refused (InvalidFsm): a state machine is invalid\n"
                                        "  FSM Event not found!\n"))
        << refused.err;
    const ToolResult absent = runText(R"({"rules":"absent.json)" + tests);
    EXPECT_EQ(absent.status, 2);
    EXPECT_EQ(absent.err, "vig: error: " + folder.path("absent.json").string() + ": No such file or directory\n");
}

TEST_F(TestCommand, FilterChoosesTestsByAPartOfTheirName) {
    const std::string tests = testCase("cold start [warm]", kSmall, "") + "," + testCase("hot", kCamera, "");
    for (const auto& [filter, status] : {std::pair("c?ld*t", 0), {"[warm", 0}, {"[hc]ot", 2}, {"hurt", 2}}) {
        options.filter = filter;
        EXPECT_EQ(run(tests).status, status) << filter;
    }
}

TEST_F(TestCommand, JUnitReportHoldsAnyText) {
    options.junitFile = folder.path("report.xml");
    run(testCase("a", kSmall, "") + "," + testCase(R"(<&\">\u0001\uFFFE)", kSmall, R"("moves":1)"));
    const std::string file = options.files[0];
    EXPECT_EQ(folder.read("report.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n"
              "  <testsuite name=\"" +
                  file + "\" tests=\"2\" failures=\"1\">\n    <testcase classname=\"" + file +
                  "\" name=\"a\"/>\n    <testcase classname=\"" + file +
                  "\" name=\"&#60;&#38;&#34;&#62;\xEF\xBF\xBD\xEF\xBF\xBD\"><failure message=\"moves: expected 1, got "
                  "0\">  moves: expected 1, got 0\n</failure></testcase>\n  </testsuite>\n</testsuites>\n");
    for (const std::string& input : {options.files[0], folder.write("events", "").string()}) {
        options.junitFile = input;
        EXPECT_EQ(runText(R"({"rules":"rules.json","tests":[{"name":"a","events":"events","expect":{}}]})").status, 2);
    }
}

TEST(Examples, HaveTestsThatReachEverything) {
    TestOptions options;
    for (const char* name : {"memory-budget", "cpu-budget", "zram-log", "first-look", "escalation"}) {
        options.files.push_back(std::string(VIG_SOURCE_DIR "/examples/") + name + ".test.json");
    }
    options.coverageMin = 100;
    const ToolResult result = runVerb(test, options);
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
