#include "tools/vig/Trace.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/RunCommand.h"
#include "tools/vig/TransitionCounts.h"

namespace {

using support::config;
using support::document;
using support::filter;
using support::linesWith;
using support::operand;
using support::runVerb;
using support::TemporaryFolder;
using support::ToolResult;
using support::transition;
using tool::RunOptions;
using tool::TransitionCounts;

const std::string kTrigger = R"([{"name":"TriggerVelora"},{"name":"LogZramHeartBeat"}])";

const std::string kDraw = operand("function", "PseudoRandomDouble");

std::string half(const std::string& other) {
    return "[" + filter("<", "double", kDraw, other) + "," + filter(">", "double", other, operand("constant", "0.2")) +
           "," + filter("!=", "integer", operand("envvar", "pid"), operand("envvar", "absent")) + "]";
}

// Draws on events and on entering states, in both kinds of filter, with functions that the registry does not have.
const std::string kRandomDocument = document({
    config(1, {transition("start", "a", "EnteringState", half(kDraw)),
               transition("start", "a", "ProcessMemoryHeartBeat",
                          "[" + filter(">", "double", operand("constant", "0.5"), kDraw) + "," +
                              filter("!=", "string", operand("function", "F"), operand("envvar", "processName")) + "]",
                          kTrigger),
               transition("a", "start", "ProcessMemoryHeartBeat", half(operand("function", "PseudoRandomDouble")))}),
    config(2, {transition("start", "start", "ProcessMemoryHeartBeat", "[" + filter("<=", "double", kDraw, kDraw) + "]",
                          kTrigger),
               transition("start", "b", "Timeout"), transition("b", "b", "EnteringState"),
               transition("start", "start", "ZramHeartBeat", "[]", kTrigger)}),
});

std::vector<std::string> linesWithout(std::string_view text, std::string_view prefix) {
    std::vector<std::string> lines = linesWith(text, "");
    std::erase_if(lines, [&](const std::string& line) { return line.starts_with(prefix); });
    return lines;
}

TEST(Trace, ChangesNothingOfWhatHappens) {
    const TemporaryFolder folder;
    const std::string examples = VIG_SOURCE_DIR "/examples/";
    const std::string random = folder.write("random.json", kRandomDocument);
    for (const std::string& rules : {random, examples + "first-look.json", examples + "memory-budget.json",
                                     examples + "cpu-budget.json", folder.write("bad.json", "{").string()}) {
        for (const std::uint32_t seed : {1U, 2U, 3U}) {
            RunOptions options;
            options.rules = rules;
            options.seed = seed;
            options.events = examples + "trace.jsonl";
            options.format = tool::ReportFormat::Jsonl;
            const ToolResult plain = runVerb(tool::run, options);
            options.explain = true;
            const ToolResult traced = runVerb(tool::run, options);
            EXPECT_EQ(traced.status, plain.status);
            EXPECT_EQ(linesWithout(traced.out, R"({"type":"explain")"), linesWith(plain.out, ""));
            EXPECT_EQ(traced.err, plain.err);
        }
    }
}

TEST(TransitionCounts, CountsTriesAndMovesWithoutAReport) {
    const TemporaryFolder folder;
    RunOptions options;
    options.rules = VIG_SOURCE_DIR "/examples/cpu-budget.json";
    options.events = VIG_SOURCE_DIR "/examples/trace.jsonl";
    const support::MemoryFile out;
    const support::MemoryFile err;
    const tool::Console console{-1, out.descriptor, err.descriptor};
    const tool::Interruption interruption;
    TransitionCounts counts;
    EXPECT_EQ(countTransitions(options, console, interruption, counts), 0);
    ASSERT_EQ(counts.byConfig().size(), 1u);
    std::string text;
    for (const auto& count : counts.byConfig()[0]) {
        text += std::to_string(count.tried) + "/" + std::to_string(count.fired) + " ";
    }
    EXPECT_EQ(text, "4/1 3/1 2/0 ");
    EXPECT_EQ(out.content() + err.content(), "");

    options.events = folder.write("events.jsonl", "{}\n");
    EXPECT_EQ(countTransitions(options, console, interruption, counts), 2);
    EXPECT_EQ(err.content(), options.events + ":1: error: event: missing\n");
}

}  // namespace
