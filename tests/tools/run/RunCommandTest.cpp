#include "tools/vig/run/RunCommand.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;
using testing::HasSubstr;
using Strings = std::vector<std::string>;

constexpr std::string_view kCamera =
    R"({"event":"ProcessMemoryHeartBeat","string":{"processName":"camera"},"int64":{"vmRssKB":1000,"vmSwapKB":24}})"
    "\n";
constexpr std::string_view kTest = "{\"event\":\"Test\"}\n";

const std::string kTrigger = R"([{"name":"TriggerVelora"}])";

class RunCommand : public testing::Test {
  protected:
    ToolResult run(const std::string& rules, std::string_view events, ReportFormat format = ReportFormat::Jsonl) {
        options.rules = folder.write("rules.json", rules);
        options.events = folder.write("events.jsonl", events);
        options.format = format;
        return runVerb(Tool::run, options);
    }

    std::size_t movesIn(const ToolResult& result) { return linesWith(result.out, R"({"type":"move")").size(); }

    const TemporaryFolder folder;
    RunOptions options;
};

TEST_F(RunCommand, TriggerMovesAndEndHaveTheirExactShape) {
    const std::string rules = document({
        config(7, {transition("start", "end", "ProcessMemoryHeartBeat", "[]", kTrigger)}),
        config(-8, {transition("start", "armed", "EnteringState"),
                    transition("armed", "armed", "ProcessMemoryHeartBeat", "[]", kTrigger)}),
    });
    const ToolResult result = run(rules, std::string(kTest) + std::string(kCamera));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const std::string trigger =
        R"("trigger_name":"vig:memory_heartbeat_over_budget:camera","process_name":"camera","metadata":[)"
        R"("threshold_current_value:1024","threshold_units:RSS_anon_plus_swap_KB","vmRssKB:1000","vmSwapKB:24",)"
        R"("processName:camera"]})";
    EXPECT_EQ(linesWith(result.out, ""),
              (Strings{
                  R"({"type":"log","event":0,"priority":"error","tag":"VIGManager",)"
                  R"("message":"ViG device config is available now."})",
                  R"({"type":"move","event":0,"machine":1,"config_id":-8,"from":"start","to":"armed"})",
                  R"({"type":"trigger","event":2,"machine":0,"config_id":7,)" + trigger,
                  R"({"type":"trigger","event":2,"machine":1,"config_id":-8,)" + trigger,
                  R"({"type":"move","event":2,"machine":0,"config_id":7,"from":"start","to":"end"})",
                  R"({"type":"end","events":2,"triggers":2,"machines":[)"
                  R"({"machine":0,"config_id":7,"payload_id":1,"state":"end"},)"
                  R"({"machine":1,"config_id":-8,"payload_id":1,"state":"armed"}]})",
              }));
}

TEST_F(RunCommand, TextSaysTheSameForAPersonAndShowsNothingThatATerminalActsOn) {
    const std::string rules = document({
        config(7, {transition("start", R"(\u001b[2J\nx)", "ProcessMemoryHeartBeat", "[]", kTrigger)}),
        config(8, {transition("start", "start", "Test", "[]", kTrigger),
                   transition("start", "start", "ZramHeartBeat", "[]", R"([{"name":"LogZramHeartBeat"}])")}),
    });
    const std::string events = R"({"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":2},)"
                               R"("string":{"processName":"\u001b]0;\u0007\u202ea\n"}})"
                               "\n{\"event\":\"Test\"}\n"
                               R"({"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":3,"numCompressedDataBytes":2}})";
    EXPECT_EQ(run(rules, events, ReportFormat::Text).out,
              R"(    event  what     who            detail
        0  log      error          VIGManager: ViG device config is available now.
        1  trigger  0 (id 7)       vig:memory_heartbeat_over_budget:\x1b]0;\x07\u202ea\n
                                   threshold_current_value:3  threshold_units:RSS_anon_plus_swap_KB  vmRssKB:1  )"
              R"(vmSwapKB:2  processName:\x1b]0;\x07\u202ea\n
        1  move     0 (id 7)       start -> \x1b[2J\nx
        2  log      error          VIGManager: Missing required attribute processName in event.
        3  log      info           VIGManager: Received VIG zram heart beat. memUsedMaxBytes: 3, )"
              R"(numCompressedDataBytes: 2

summary
  events    3
  triggers  1
          1 vig:memory_heartbeat_over_budget:\x1b]0;\x07\u202ea\n
  machine   0  config id 7  payload id 1  in state \x1b[2J\nx
  machine   1  config id 8  payload id 1  in state start
)");
}

TEST_F(RunCommand, RefusedDocumentIsShownWithItsLogLinesAndTheLayerAtFault) {
    const struct {
        std::string rules;
        std::string error;
        std::size_t logLines;
    } cases[] = {
        {"{", "InvalidJson", 2},
        {"[]", "InvalidResponse", 1},
        {R"({"configs":[7]})", "InvalidConfig", 2},
        {R"({"configs":[{"id":1,"payload":{}}]})", "InvalidConfigPayload", 2},
        {documentOf({transition("start", "end", "test")}), "InvalidFsm): a state machine is invalid\n", 3},
    };
    for (const auto& each : cases) {
        const ToolResult result = run(each.rules, kTest);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, testing::StartsWith(options.rules + ": error: refused (" + each.error));
        EXPECT_EQ(linesWith(result.out, R"({"type":"log","event":0,)").size(), each.logLines) << result.out;
        EXPECT_EQ(linesWith(result.out, "").size(), each.logLines);
    }
}

TEST_F(RunCommand, WhatCannotBeReadIsNamedAtOnce) {
    std::string RunOptions::*const inputs[] = {&RunOptions::rules, &RunOptions::events, &RunOptions::contextFile};
    const std::string good = folder.write("good.json", document({}));
    for (const auto& [name, why] : {std::pair("absent", ": No such file or directory"), {"", ": Is a directory"}}) {
        for (std::string RunOptions::*const input : inputs) {
            RunOptions unreadable;
            unreadable.rules = good;
            unreadable.*input = folder.path(name);
            const ToolResult result = runVerb(Tool::run, unreadable);
            EXPECT_EQ(result.status, 2);
            EXPECT_THAT(result.err, HasSubstr(unreadable.*input + why + "\n"));
            EXPECT_EQ(result.out, "");
        }
    }
}

TEST_F(RunCommand, BadLineEndsTheRunAfterWhatHappenedBefore) {
    const std::string rules = documentOf({transition("start", "end", "ProcessMemoryHeartBeat", "[]", kTrigger)});
    const std::string events = std::string(kCamera) + "{\"event\":\"\x1B[2J\\u001b\"}\n" + std::string(kTest);
    const std::string problem = ":2: error: a control character in a string has to be escaped\n";
    const ToolResult ofFile = run(rules, events);
    EXPECT_EQ(ofFile.err, options.events + problem);
    options.events = "-";
    const ToolResult ofInput = runVerb(Tool::run, options, events);
    EXPECT_EQ(ofInput.err, "<stdin>" + problem);
    for (const ToolResult& result : {ofFile, ofInput}) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(linesWith(result.out, R"({"type":"trigger")").size(), 1u);
        EXPECT_EQ(movesIn(result), 1u);
        EXPECT_EQ(linesWith(result.out, R"({"type":"end")").size(), 0u);
    }
}

TEST_F(RunCommand, SeedAndContextDecideWhatHappens) {
    const std::string limited = "integer limit == =5";
    const std::string drawn = "double PseudoRandomDouble() < =0.5";
    const std::string rules = document({config(1, {transition("start", "end", "EnteringState", filters({limited}))}),
                                        config(2, {transition("start", "end", "Test", filters({drawn, limited}))})});
    const std::string context = R"({"event":"Test","int64":{"limit":5}})";
    EXPECT_EQ(movesIn(run(rules, kTest)), 0u);
    options.contextFile = folder.write("context.jsonl", context + "\n");
    EXPECT_EQ(movesIn(run(rules, kTest)), 2u);
    options.seed = 1;
    EXPECT_EQ(movesIn(run(rules, kTest)), 1u);

    for (const std::string& wrong : {std::string(), context + "\n" + context}) {
        folder.write("context.jsonl", wrong);
        const ToolResult result = run(rules, kTest);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, options.contextFile + ": error: expected exactly one record\n");
    }
}

TEST_F(RunCommand, InterruptionEndsTheRunWithItsSummary) {
    options.rules = folder.write("rules.json", document({}));
    options.format = ReportFormat::Jsonl;
    const MemoryFile out;
    Interruption later;
    RuleRun ruleRun(options, options.format, {STDIN_FILENO, out.descriptor, STDERR_FILENO}, later);
    ASSERT_EQ(ruleRun.load(RuleSession::Changes::Ignore), std::nullopt);
    EXPECT_FALSE(ruleRun.mustStop());
    later.request();
    EXPECT_TRUE(ruleRun.mustStop());
    EXPECT_EQ(ruleRun.finish(kExitInterrupted, std::nullopt), 130);
    EXPECT_EQ(linesWith(out.content(), R"({"type":"end","events":0)").size(), 1u);

    // A pipe that nobody writes to yet is not waited for either.
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (std::string* const input : {&options.events, &options.contextFile}) {
        *input = pipe;
        EXPECT_EQ(Tool::run(options, Console(), later), 130);
    }
}

TEST_F(RunCommand, ClosedPipeIsNoErrorAndAFullDiskIs) {
    options.rules = folder.write("rules.json", documentOf({transition("start", "end", "Test")}));
    options.events = folder.write("events.jsonl", kTest);
    Interruption interruption;
    const InterruptOnSignals signals(interruption);
    const MemoryFile err;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(Tool::run(options, {STDIN_FILENO, ends[1], err.descriptor}, interruption), 0);
    EXPECT_EQ(err.content(), "");
    close(ends[1]);

    const int full = open("/dev/full", O_WRONLY);
    EXPECT_EQ(Tool::run(options, {STDIN_FILENO, full, err.descriptor}, interruption), 2);
    EXPECT_EQ(err.content(), "vig: error: standard output: No space left on device\n");
    close(full);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
