#include "tools/vig/watch/WatchCommand.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/run/RunCommand.h"

namespace Brenta::OS::VIG::Tool {

namespace {

namespace fs = std::filesystem;
using support::config;
using support::document;
using support::linesWith;
using support::runVerb;
using support::ToolResult;
using support::transition;

// Watches a made-up machine with forty processes.
class WatchCommand : public testing::Test {
  protected:
    WatchCommand() {
        for (int pid = 1; pid <= 40; ++pid) {
            const std::string process = "proc/" + std::to_string(pid);
            fs::create_directories(folder.path(process));
            folder.write(process + "/status", "Name:\tp\xFF" + std::to_string(pid) + "\nVmRSS:\t100 kB\n");
        }
        folder.write("proc/meminfo", "MemTotal: 4000 kB\n");
        options.rules = folder.write("rules.json", sampling("end"));
        options.format = ReportFormat::Jsonl;
        options.duration = std::chrono::milliseconds(0);
        options.procFolder = folder.path("proc");
        options.sysFolder = folder.path("sys");
    }

    // Asks for a trigger for about half of the processes, and moves with the first sample.
    static std::string sampling(const std::string& reached) {
        const std::string half = support::filters({"double PseudoRandomDouble() < =0.5"});
        return document({
            config(1, {transition("start", "start", "ProcessMemoryHeartBeat", half, R"([{"name":"TriggerVelora"}])")}),
            config(2, {transition("start", reached, "SystemMemoryHeartBeat", "[]", R"([{"name":"Test"}])")}),
        });
    }

    const support::TemporaryFolder folder;
    WatchOptions options;
};

TEST_F(WatchCommand, RecordReplaysToTheSameTriggersAndMoves) {
    options.recordFile = folder.write("record.jsonl", std::string(100'000, 'p'));
    options.overwrite = true;
    const ToolResult watched = runVerb(watch, options);
    ASSERT_EQ(watched.status, 0) << watched.err;
    RunOptions replay;
    replay.rules = options.rules;
    replay.events = options.recordFile;
    replay.format = ReportFormat::Jsonl;
    const ToolResult replayed = runVerb(run, replay);
    EXPECT_EQ(replayed.status, 0) << replayed.err;
    const auto triggers = linesWith(watched.out, R"({"type":"trigger")");
    EXPECT_GT(triggers.size(), 5u);
    EXPECT_EQ(triggers, linesWith(replayed.out, R"({"type":"trigger")"));
    EXPECT_EQ(linesWith(watched.out, R"({"type":"move")"), linesWith(replayed.out, R"({"type":"move")"));
    const auto end = linesWith(watched.out, R"({"type":"end","events":41,)");
    ASSERT_EQ(end.size(), 1u);
    EXPECT_TRUE(
        end[0].ends_with(R"("samples":1,"events_by_type":{"ProcessMemoryHeartBeat":40,"SystemMemoryHeartBeat":1}})"))
        << end[0];
}

TEST_F(WatchCommand, RecordIsMadeWithoutRulesToo) {
    options.rules.clear();
    EXPECT_EQ(runVerb(watch, options).status, 2);
    options.recordFile = folder.path("record.jsonl");
    const ToolResult result = runVerb(watch, options);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(result.out.starts_with(R"({"type":"end","events":41,"triggers":0,"machines":[],"samples":1,)"))
        << result.out;
    EXPECT_EQ(linesWith(support::textOf(options.recordFile), R"({"event":"ProcessMemoryHeartBeat")").size(), 40u);
}

TEST_F(WatchCommand, RecordThatCannotBeWrittenEndsTheWatch) {
    options.recordFile = "/dev/full";
    options.overwrite = true;
    options.duration = std::chrono::hours(1);
    const ToolResult result = runVerb(watch, options);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("vig: error: /dev/full: No space left on device\n"), std::string::npos);
}

TEST_F(WatchCommand, DurationIsFilledWithSamplesAtItsIntervals) {
    options.duration = std::chrono::milliseconds(25);
    options.interval = std::chrono::milliseconds(10);
    const ToolResult result = runVerb(watch, options);
    // A busy machine may miss some; none is made up.
    EXPECT_THAT(result.out, testing::ContainsRegex("\"samples\":[1-3],"));
}

TEST_F(WatchCommand, SavedDocumentTakesThePlaceOfTheOneBefore) {
    options.duration = std::chrono::hours(1);  // only the interruption ends it
    options.interval = std::chrono::milliseconds(5);
    options.draws.numbers = {0, 0.5};  // of which only the first one lets a trigger through
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const support::MemoryFile err;
    Interruption interruption;
    std::thread watch([&] {
        EXPECT_EQ(Tool::watch(options, {STDIN_FILENO, ends[1], err.descriptor}, interruption), 0);
        close(ends[1]);
    });
    const Interruption never;
    LineReader reader(ends[0], "the watch", never, [] {});
    std::string_view line;
    const auto waitFor = [&](std::string_view part) {
        while (reader.next(line) == LineReader::Status::Line) {
            if (line.find(part) != std::string_view::npos) {
                return;
            }
        }
        ADD_FAILURE() << "no line with " << part;
    };
    waitFor(R"("from":"start","to":"end")");
    folder.write("new.json", sampling("elsewhere"));
    fs::rename(folder.path("new.json"), options.rules);
    waitFor(R"("configurations":2)");
    waitFor(R"("from":"start","to":"elsewhere")");

    folder.write("rules.json", R"({"configs":[7]})");
    waitFor("Invalid VIG Config JSON");
    waitFor(R"("error":"refused (InvalidConfig)");
    folder.write("new.json", sampling("elsewhere"));
    fs::rename(folder.path("new.json"), options.rules);
    waitFor(R"("to":"elsewhere")");
    fs::remove(options.rules);
    waitFor("No such file or directory");
    interruption.request();
    std::string last;
    while (reader.next(line) == LineReader::Status::Line) {
        last = line;
    }
    watch.join();
    close(ends[0]);
    EXPECT_THAT(last, testing::ContainsRegex(R"(^\{"type":"end","events":[0-9]+,"triggers":1,)"));
    using testing::HasSubstr;
    // What was told of one delivery is not told of the next again.
    EXPECT_THAT(linesWith(err.content(), options.rules),
                testing::ElementsAre(HasSubstr("[no-way-out]"), HasSubstr(":1:13: error: Invalid VIG Config JSON: 7"),
                                     HasSubstr(": error: refused; no rules run until it is mended"),
                                     HasSubstr("No such file or directory; no rules run until it is mended")));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
