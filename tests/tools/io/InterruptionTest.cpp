#include "tools/vig/io/Interruption.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

TEST(InterruptionDeathTest, SecondSignalOfEitherKindEndsTheProcess) {
    for (const auto& [first, second] :
         {std::pair(SIGINT, SIGINT), {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}}) {
        const auto pressTwice = [](int once, int again) {
            signal(SIGINT, SIG_DFL);
            signal(SIGTERM, SIG_DFL);
            Interruption interruption;
            const InterruptOnSignals signals(interruption);
            raise(once);
            raise(interruption.requested() ? again : SIGKILL);
        };
        EXPECT_EXIT(pressTwice(first, second), testing::KilledBySignal(second), "");
    }
}

TEST(InterruptionDeathTest, WhatWasIgnoredStaysSoAndAllIsAsBeforeAfterwards) {
    const auto interrupt = [] {
        signal(SIGINT, SIG_IGN);
        signal(SIGTERM, SIG_DFL);
        signal(SIGPIPE, SIG_DFL);
        Interruption interruption;
        bool early = true;
        {
            const InterruptOnSignals signals(interruption);
            raise(SIGINT);
            raise(SIGPIPE);
            raise(SIGXFSZ);
            early = interruption.requested();
            raise(SIGTERM);
        }
        const bool isRight = !early && interruption.requested() && signal(SIGINT, SIG_DFL) == SIG_IGN &&
                             signal(SIGTERM, SIG_DFL) == SIG_DFL && signal(SIGPIPE, SIG_DFL) == SIG_DFL;
        _exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(interrupt(), testing::ExitedWithCode(0), "");
}

TEST(Interruption, EndsWhateverWaitsForAPipe) {
    const support::TemporaryFolder folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::map<std::string, std::string> files = {{"P", "/dev/fd/" + std::to_string(ends[0])}};
    files["R"] = folder.write("rules.json", support::document({}));
    files["E"] = folder.write("events.jsonl", "{\"event\":\"Test\"}\n");
    files["T"] = folder.write(
        "test", R"({"rules":"rules.json","tests":[{"name":"a","expect":{},"events":")" + files["P"] + "\"}]}");
    // The pipe, which is standard input, too, is P.
    for (const std::string line : {"check P", "check R --catalogue P", "check R --events P", "graph P",
                                   "graph R --events P", "graph R --events E --context P", "run P", "run R --context P",
                                   "run R P", "run R", "run R --summary-only --context P", "watch P",
                                   "watch R --context P", "summary P", "summary", "catalogue P", "test P", "test T"}) {
        SCOPED_TRACE(line);
        std::istringstream words(line);
        std::vector<std::string> command;
        for (std::string word; words >> word;) {
            command.push_back(files.contains(word) ? files[word] : word);
        }
        ASSERT_EQ(write(ends[1], "{", 1), 1);
        const support::MemoryFile out;
        const support::MemoryFile err;
        Interruption interruption;
        {
            // The pipe has no end.
            const std::jthread user = support::interruptOnceRead(ends[0], interruption);
            EXPECT_EQ(support::runTool(command, {ends[0], out.descriptor, err.descriptor}, interruption), 130);
        }
        EXPECT_EQ(err.content(), "");
    }
    close(ends[0]);
    close(ends[1]);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
