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

std::string testCase(const std::string& events, const std::string& expect) {
    return fmt::format(R"({{"name":"t","events":[{}],"expect":{{{}}}}})", events, expect);
}

std::string testFile(const std::string& rules, const std::string& tests) {
    return R"({"rules":")" + rules + R"(","tests":[)" + tests + "]}";
}

class TestCommand : public testing::Test {
  protected:
    TestCommand() { folder.write("rules.json", kRules); }

    ToolResult run(const std::string& events, const std::string& expect) {
        TestOptions options;
        options.files = {folder.write("a.test.json", testFile("rules.json", testCase(events, expect)))};
        return support::runVerb(test, options);
    }

    const support::TemporaryFolder folder;
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
    for (const auto& [events, expect, passes] : cases) {
        const ToolResult result = run(events, expect);
        EXPECT_EQ(result.status, passes ? 0 : 1) << expect << result.out;
        EXPECT_EQ(result.err, "");
    }
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
        const ToolResult result = run(events, R"("log":[)" + lines + "]");
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
    const std::string events = support::joined(std::vector<std::string>(400, R"({"event":"Test"})"));
    const std::string lines = support::joined(std::vector<std::string>(2000, "\"0\""));
    const auto memoryFor = [&](const std::string& happening, const std::string& expect) {
        return support::peakMemory([&] { run(happening, expect); });
    };
    constexpr std::size_t kMegabyte = 1 << 20;
    EXPECT_LT(memoryFor(events, R"("log":[)" + lines + "]"), memoryFor("", "") + 16 * kMegabyte);
}

TEST_F(TestCommand, WhatHasBeenFoundIsToldWhateverBecomesOfTheNextFile) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    folder.write("large.json", R"({"configs":[],"x":[0)" + std::string(40'000'000, ',') + "]}");
    TestOptions options;
    for (const std::string rules : {"rules.json", "large.json"}) {
        options.files.push_back(folder.write("of " + rules, testFile(rules, testCase("", ""))));
    }
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

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
