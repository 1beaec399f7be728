#include "tools/vig/run/RunCommand.h"

#include <fcntl.h>
#include <gtest/gtest.h>
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

using support::config;
using support::document;
using support::documentOf;
using support::filters;
using support::linesWith;
using support::runVerb;
using support::TemporaryFolder;
using support::ToolResult;
using support::transition;
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

TEST_F(RunCommand, LogLinesCarryTheirEventAndPriority) {
    const std::string rules =
        document({config(1, {transition("start", "start", "ZramHeartBeat", "[]", R"([{"name":"LogZramHeartBeat"}])"),
                             transition("start", "start", "Test", "[]", kTrigger)})});
    const ToolResult result =
        run(rules, R"({"event":"ZramHeartBeat","uint64":{"memUsedMaxBytes":3,"numCompressedDataBytes":2}})"
                   "\n{\"event\":\"Test\",\"string\":{\"processName\":\"\"}}\n");
    const Strings logs = linesWith(result.out, R"({"type":"log")");
    ASSERT_EQ(logs.size(), 3u);
    EXPECT_TRUE(logs[1].starts_with(R"({"type":"log","event":1,"priority":"info","tag":"VIGManager","message":")"));
    EXPECT_EQ(logs[2], R"({"type":"log","event":2,"priority":"error","tag":"VIGManager",)"
                       R"("message":"Missing required attribute processName in event."})");
}

TEST_F(RunCommand, RefusedDocumentIsShownWithItsLogLinesAndTheLayerAtFault) {
    const struct {
        std::string rules;
        std::string why;
        std::size_t logLines;
    } cases[] = {
        {"{", "refused (InvalidJson): the text is not JSON", 2},
        {"[]", "refused (InvalidResponse): the root must be an object whose \"configs\" is an array", 1},
        {R"({"configs":[7]})",
         "refused (InvalidConfig): a configuration must be an object with a 64-bit number \"id\" and an object "
         "\"payload\"",
         2},
        {R"({"configs":[{"id":1,"payload":{}}]})",
         "refused (InvalidConfigPayload): a payload must be an object with a 32-bit number \"id\" and an object "
         "\"data\"",
         2},
        {documentOf({transition("start", "end", "test")}), "refused (InvalidFsm): a state machine is invalid", 3},
    };
    for (const auto& each : cases) {
        const ToolResult result = run(each.rules, kTest);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, options.rules + ": error: " + each.why + "\n");
        EXPECT_EQ(linesWith(result.out, R"({"type":"log","event":0,)").size(), each.logLines) << result.out;
        EXPECT_EQ(linesWith(result.out, "").size(), each.logLines);
    }
}

TEST_F(RunCommand, WhatCannotBeReadIsNamedAtOnce) {
    const std::string good = folder.write("good.json", document({}));
    const std::string absent = folder.path("absent");
    const struct {
        std::string rules;
        std::string events;
        std::string context;
        std::string message;
    } cases[] = {
        {absent, "-", "", absent + ": No such file or directory"},
        {folder.path(), "-", "", folder.path().string() + ": Is a directory"},
        {good, absent, "", absent + ": No such file or directory"},
        {good, folder.path(), "", folder.path().string() + ": Is a directory"},
        {good, "-", absent, absent + ": No such file or directory"},
    };
    for (const auto& each : cases) {
        RunOptions unreadable;
        unreadable.rules = each.rules;
        unreadable.events = each.events;
        unreadable.contextFile = each.context;
        const ToolResult result = runVerb(Tool::run, unreadable);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "vig: error: " + each.message + "\n");
    }
}

TEST_F(RunCommand, BadLineEndsTheRunAfterWhatHappenedBefore) {
    const std::string rules = documentOf({transition("start", "end", "ProcessMemoryHeartBeat", "[]", kTrigger)});
    const ToolResult result =
        run(rules, std::string(kCamera) + "{\"event\":\"\x1B[2J\\u001b\"}\n" + std::string(kTest));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, options.events + ":2: error: a control character in a string has to be escaped\n");
    EXPECT_EQ(linesWith(result.out, R"({"type":"trigger")").size(), 1u);
    EXPECT_EQ(linesWith(result.out, R"({"type":"move")").size(), 1u);
    EXPECT_EQ(linesWith(result.out, R"({"type":"end")").size(), 0u);
}

TEST_F(RunCommand, StandardInputIsReadWhereNoFileIsGiven) {
    options.rules = folder.write("rules.json", documentOf({transition("start", "end", "Test")}));
    const ToolResult result = runVerb(Tool::run, options, std::string(kTest) + "{}\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "<stdin>:2: error: event: missing\n");
    EXPECT_NE(result.out.find("start -> end"), std::string::npos);
}

TEST_F(RunCommand, SeedDecidesWhatIsDrawn) {
    const std::string rules =
        documentOf({transition("start", "end", "Test", filters({"double PseudoRandomDouble() < =0.5"}))});
    EXPECT_EQ(linesWith(run(rules, kTest).out, R"({"type":"move")").size(), 1u);
    options.seed = 1;
    EXPECT_EQ(linesWith(run(rules, kTest).out, R"({"type":"move")").size(), 0u);
}

TEST_F(RunCommand, ContextGivesEveryMachineTheAttributesOfOneRecord) {
    const std::string filter = filters({"integer limit == =5", "string model == =x"});
    const std::string rules = document({
        config(1, {transition("start", "end", "EnteringState", filter, "[]")}),
        config(2, {transition("start", "end", "Test", filter, "[]")}),
    });
    const std::string context = R"({"event":"Test","int64":{"limit":5},"string":{"model":"x"}})";
    EXPECT_EQ(linesWith(run(rules, kTest).out, R"({"type":"move")"), Strings());
    options.contextFile = folder.write("context.jsonl", context + "\n");
    EXPECT_EQ(linesWith(run(rules, kTest).out, R"({"type":"move")").size(), 2u);

    for (const std::string& wrong : {std::string(), context + "\n" + context}) {
        folder.write("context.jsonl", wrong);
        const ToolResult result = run(rules, kTest);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, options.contextFile + ": error: expected exactly one record\n");
    }
}

TEST_F(RunCommand, TextSaysTheSameForAPersonAndShowsNothingThatATerminalActsOn) {
    const std::string rules = document({
        config(7, {transition("start", R"(\u001b[2J\nx)", "ProcessMemoryHeartBeat", "[]", kTrigger)}),
        config(8, {transition("start", "start", "Test", "[]", kTrigger)}),
    });
    const std::string events = R"({"event":"ProcessMemoryHeartBeat","int64":{"vmRssKB":1,"vmSwapKB":2},)"
                               R"("string":{"processName":"\u001b]0;\u0007\u202ea\n"}})"
                               "\n{\"event\":\"Test\"}\n";
    EXPECT_EQ(run(rules, events, ReportFormat::Text).out,
              "    event  what     who            detail\n"
              "        0  log      error          VIGManager: ViG device config is available now.\n"
              "        1  trigger  0 (id 7)       vig:memory_heartbeat_over_budget:\\x1b]0;\\x07\\u202ea\\n\n"
              "                                   threshold_current_value:3  "
              "threshold_units:RSS_anon_plus_swap_KB  vmRssKB:1  vmSwapKB:2  processName:\\x1b]0;\\x07\\u202ea\\n\n"
              "        1  move     0 (id 7)       start -> \\x1b[2J\\nx\n"
              "        2  log      error          VIGManager: Missing required attribute processName in event.\n"
              "\n"
              "summary\n"
              "  events    2\n"
              "  triggers  1\n"
              "          1 vig:memory_heartbeat_over_budget:\\x1b]0;\\x07\\u202ea\\n\n"
              "  machine   0  config id 7  payload id 1  in state \\x1b[2J\\nx\n"
              "  machine   1  config id 8  payload id 1  in state start\n");
}

TEST_F(RunCommand, InterruptionEndsTheRunWithItsSummary) {
    options.rules = folder.write("rules.json", document({}));
    options.format = ReportFormat::Jsonl;
    int ends[2];  // a live input that stays silent
    ASSERT_EQ(pipe(ends), 0);
    const support::MemoryFile out;
    Interruption later;
    RuleRun ruleRun(options, options.format, {ends[0], out.descriptor, STDERR_FILENO}, later);
    ASSERT_EQ(ruleRun.load(RuleSession::Changes::Ignore), std::nullopt);
    later.request();
    EXPECT_TRUE(ruleRun.mustStop());
    EXPECT_EQ(ruleRun.finish(kExitInterrupted, std::nullopt), 130);
    EXPECT_EQ(linesWith(out.content(), R"({"type":"end","events":0)").size(), 1u);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(RunCommand, PipeThatNobodyWritesToYetIsNotWaitedForOnceTheEndIsRequested) {
    options.rules = folder.write("rules.json", document({}));
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Interruption interruption;
    interruption.request();
    for (std::string* const input : {&options.events, &options.contextFile}) {
        *input = pipe;
        EXPECT_EQ(Tool::run(options, Console(), interruption), 130);
    }
}

TEST_F(RunCommand, ClosedPipeIsNoErrorAndAFullDiskIs) {
    options.rules = folder.write("rules.json", documentOf({transition("start", "end", "Test")}));
    options.events = folder.write("events.jsonl", kTest);
    Interruption interruption;
    const InterruptOnSignals signals(interruption);
    const support::MemoryFile err;
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
