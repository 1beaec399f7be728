#include "tools/vig/trace/Trace.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/RunCommand.h"
#include "tools/vig/trace/TransitionCounts.h"

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

// Runs two events of type Test with a context and returns the report.
ToolResult explained(const TemporaryFolder& folder, const std::string& transitions, RunOptions options) {
    options.rules = folder.write(
        "rules.json", R"({"configs":[{"id":7,"payload":{"id":1,"data":{"transitions":[)" + transitions + "]}}}]}");
    options.events = folder.write("events.jsonl", R"({"event":"Test","int64":{"pid":3}})"
                                                  "\n"
                                                  R"({"event":"Test","time_ms":9,"int64":{"pid":8,"limit":4}})"
                                                  "\n");
    options.contextFile = folder.write("context.jsonl", R"({"event":"Test","int64":{"limit":5}})");
    return runVerb(tool::run, options);
}

TEST(Explain, ShowsEachFilterWithTheValuesThatItCompared) {
    const std::string filters = "[" + filter("<", "integer", operand("constant", " 4kB"), operand("envvar", "limit")) +
                                "," + filter("!=", "string", operand("envvar", "name"), operand("constant", "x")) +
                                "," + filter("<=", "integer", operand("envvar", "absent"), operand("envvar", "pid")) +
                                "," + filter("<", "double", kDraw, operand("constant", "1")) + "," +
                                filter(">", "double", operand("envvar", "pid"), operand("constant", "0")) + "]";
    RunOptions options;
    options.explain = true;
    const TemporaryFolder folder;
    const std::string transitions = transition("start", "end", "Test", filters) + "," +
                                    transition("start", "a", "Test", "[]", R"([{"name":"Test"}])") + "," +
                                    transition("a", "b", "EnteringState");
    const std::string text = explained(folder, transitions, options).out;
    EXPECT_EQ(text.substr(0, text.find("\nsummary")),
              R"(    event  what     who            detail
        0  log      error          VIGManager: ViG device config is available now.
        1  explain  0 (id 7)       Test in state start
                                     configs[0].payload.data.transitions[0] -> end: stopped by filter 5 of 5
                                       yes    4kB < limit              4 < 5
                                       yes   name != "x"               "" (missing) != "x"
                                       yes   absent <= pid             0 (missing) <= 3
                                       yes   PseudoRandomDouble() < 1  0.1354770042967805 < 1
                                       no    pid > 0                   missing > 0
                                     configs[0].payload.data.transitions[1] -> a: fires
                                       runs  Test
        1  explain  0 (id 7)       EnteringState in state a
                                     configs[0].payload.data.transitions[2] -> b: fires
        1  move     0 (id 7)       start -> b
        2  explain  0 (id 7)       Test in state b: no transition listens
)");
    options.format = tool::ReportFormat::Jsonl;
    EXPECT_EQ(linesWith(explained(folder, transition("start", "end", "Test", filters), options).out,
                        R"({"type":"explain","event":2)")[0],
              R"({"type":"explain","event":2,"machine":0,"config_id":7,"event_type":"Test","state":"start",)"
              R"("transitions":[{"path":"configs[0].payload.data.transitions[0]","to":"end","fired":false,"filters":[)"
              R"({"condition":" 4kB < limit","left":4,"right":4,"verdict":false}],"actions":[]}]})");
}

TEST(WhyNot, TellsWhatKeptATransitionFromFiring) {
    const std::string filters = "[" + filter(">", "integer", operand("envvar", "pid"), operand("constant", "9")) + "]";
    const std::string transitions = transition("start", "end", "Test", filters) + "," +
                                    transition("start", "a", "Test", "[]") + "," + transition("a", "b", "Test") + "," +
                                    transition("b", "c", "EnteringState", filters) + "," +
                                    transition("c", "b", "EnteringState");
    const struct {
        std::string path;
        std::string expected;
    } cases[] = {
        {"configs[0].payload.data.transitions[0]",
         R"(why not configs[0].payload.data.transitions[0] (start -> end on Test)
        2 events
        1   while the machine was in state a
        1   for which it was tried
        1     stopped by pid > 9, at the nearest 3 > 9 (off by 7) in event 1
        0     fired
)"},
        {"configs[0].payload.data.transitions[2]", R"(why not configs[0].payload.data.transitions[2] (a -> b on Test)
        2 events
        1   while the machine was in state start
        1   for which it was tried
        1     fired
)"},
        {"configs[0].payload.data.transitions[3]",
         R"(why not configs[0].payload.data.transitions[3] (b -> c on EnteringState)
        3 events
        2   of another type
        1   for which it was tried
        1     stopped by pid > 9
        0     fired
)"},
        {"configs[0].payload.data.transitions[4]",
         R"(why not configs[0].payload.data.transitions[4] (c -> b on EnteringState)
        2 events
        2   of another type
        0   for which it was tried
        0     fired
)"},
    };
    const TemporaryFolder folder;
    RunOptions options;
    for (const auto& each : cases) {
        options.whyNot = each.path;
        const std::string text = explained(folder, transitions, options).out;
        const std::size_t begin = text.find("why not");
        EXPECT_EQ(text.substr(begin, text.find("\nsummary") - begin), each.expected);
    }
    options.format = tool::ReportFormat::Jsonl;
    options.whyNot = cases[0].path;
    EXPECT_EQ(linesWith(explained(folder, transition("start", "end", "Test", filters), options).out,
                        R"({"type":"why_not")")[0],
              R"({"type":"why_not","path":"configs[0].payload.data.transitions[0]","machine":0,"config_id":7,)"
              R"("from":"start","to":"end","event_type":"Test","events":2,"other_types":0,"other_states":[],)"
              R"("earlier_fired":0,"tried":2,"fired":0,"filters":[{"condition":"pid > 9","stopped":2,)"
              R"("nearest":{"distance":2,"left":8,"right":9,"event":2,"time_ms":9}}]})");
    options.whyNot = "configs[0].payload.data.transition[0]";
    const ToolResult unknown = explained(folder, transition("start", "end", "Test", filters), options);
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, folder.path("rules.json").string() +
                               ": error: no transition has the path \"configs[0].payload.data.transition[0]\"; did you "
                               "mean \"configs[0].payload.data.transitions[0]\"?; there are "
                               "configs[0].payload.data.transitions[0]\n");
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
