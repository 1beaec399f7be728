#include "tools/vig/trace/Trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/run/RunCommand.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::config;
using support::document;
using support::filters;
using support::linesWith;
using support::runVerb;
using support::TemporaryFolder;
using support::ToolResult;
using support::transition;

const std::string kTrigger = R"([{"name":"TriggerVelora"},{"name":"LogZramHeartBeat"}])";

const std::string kHalf = filters({"double PseudoRandomDouble() < PseudoRandomDouble()",
                                   "double PseudoRandomDouble() > =0.2", "integer pid != absent"});

// Draws on events and on entering states, in both kinds of filter, with functions that the registry does not have.
const std::string kRandomDocument = document({
    config(1, {transition("start", "a", "EnteringState", kHalf),
               transition("start", "a", "ProcessMemoryHeartBeat",
                          filters({"double =0.5 > PseudoRandomDouble()", "string F() != processName"}), kTrigger),
               transition("a", "start", "ProcessMemoryHeartBeat", kHalf)}),
    config(2, {transition("start", "start", "ProcessMemoryHeartBeat",
                          filters({"double PseudoRandomDouble() <= PseudoRandomDouble()"}), kTrigger),
               transition("start", "b", "Timeout"), transition("b", "b", "EnteringState"),
               transition("start", "start", "ZramHeartBeat", "[]", kTrigger)}),
});

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
            options.format = ReportFormat::Jsonl;
            const ToolResult plain = runVerb(run, options);
            options.explain = true;
            const ToolResult traced = runVerb(run, options);
            std::vector<std::string> others = linesWith(traced.out, "");
            std::erase_if(others, [](const auto& line) { return line.starts_with(R"({"type":"explain")"); });
            EXPECT_EQ(traced.status, plain.status);
            EXPECT_EQ(others, linesWith(plain.out, ""));
            EXPECT_EQ(traced.err, plain.err);
        }
    }
}

// Runs two events of type Test with a context and returns the report.
ToolResult explained(const TemporaryFolder& folder, const std::string& transitions, RunOptions options) {
    options.rules = folder.write("rules.json", support::documentOf({transitions}));
    options.events = folder.write("events.jsonl", R"({"event":"Test","int64":{"pid":3}})"
                                                  "\n"
                                                  R"({"event":"Test","time_ms":9,"int64":{"pid":8,"limit":4}})"
                                                  "\n");
    options.contextFile = folder.write("context.jsonl", R"({"event":"Test","int64":{"limit":5}})");
    return runVerb(run, options);
}

TEST(WhyNot, TellsWhatKeptATransitionFromFiring) {
    const std::string above = filters({"integer pid > =9"});
    const std::string transitions = transition("start", "end", "Test", above) + "," +
                                    transition("start", "a", "Test", "[]") + "," + transition("a", "b", "Test") + "," +
                                    transition("b", "c", "EnteringState", above) + "," +
                                    transition("c", "b", "EnteringState");
    // The index of a transition, and the answer.
    const std::pair<std::string, std::string> cases[] = {
        {"0", R"( (start -> end on Test)
        2 events
        1   while the machine was in state a
        1   for which it was tried
        1     stopped by pid > 9, at the nearest 3 > 9 (off by 7) in event 1
        0     fired
)"},
        {"2", R"( (a -> b on Test)
        2 events
        1   while the machine was in state start
        1   for which it was tried
        1     fired
)"},
        {"3", R"( (b -> c on EnteringState)
        3 events
        2   of another type
        1   for which it was tried
        1     stopped by pid > 9
        0     fired
)"},
        {"4", R"( (c -> b on EnteringState)
        2 events
        2   of another type
        0   for which it was tried
        0     fired
)"},
    };
    const TemporaryFolder folder;
    RunOptions options;
    for (const auto& [index, answer] : cases) {
        options.whyNot = "configs[0].payload.data.transitions[" + index + "]";
        const std::string text = explained(folder, transitions, options).out;
        const std::size_t begin = text.find("why not");
        EXPECT_EQ(text.substr(begin, text.find("\nsummary") - begin), "why not " + options.whyNot + answer);
    }
    options.format = ReportFormat::Jsonl;
    options.whyNot = "configs[0].payload.data.transitions[0]";
    EXPECT_EQ(
        linesWith(explained(folder, transition("start", "end", "Test", above), options).out, R"({"type":"why_not")")[0],
        R"({"type":"why_not","path":"configs[0].payload.data.transitions[0]","machine":0,"config_id":7,)"
        R"("from":"start","to":"end","event_type":"Test","events":2,"other_types":0,"other_states":[],)"
        R"("earlier_fired":0,"tried":2,"fired":0,"filters":[{"condition":"pid > 9","stopped":2,)"
        R"("nearest":{"distance":2,"left":8,"right":9,"event":2,"time_ms":9}}]})");
    options.whyNot = "configs[0].payload.data.transition[0]";
    const ToolResult unknown = explained(folder, transition("start", "end", "Test", above), options);
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, folder.path("rules.json").string() +
                               ": error: no transition has the path \"configs[0].payload.data.transition[0]\"; did you "
                               "mean \"configs[0].payload.data.transitions[0]\"?; there are "
                               "configs[0].payload.data.transitions[0]\n");
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
