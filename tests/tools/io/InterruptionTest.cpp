#include "tools/vig/io/Interruption.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

namespace Brenta::OS::VIG::Tool {

namespace {

void (*handlerOf(int number))(int) {
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    return action.sa_handler;
}

TEST(InterruptionDeathTest, SecondSignalOfEitherKindEndsTheProcess) {
    for (const auto& [first, second] :
         {std::pair(SIGINT, SIGINT), {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}}) {
        const auto pressTwice = [](int once, int again) {
            signal(SIGINT, SIG_DFL);
            signal(SIGTERM, SIG_DFL);
            Interruption interruption;
            const InterruptOnSignals signals(interruption);
            raise(once);
            if (interruption.requested()) {
                raise(again);
            }
            _exit(0);
        };
        EXPECT_EXIT(pressTwice(first, second), testing::KilledBySignal(second), "");
    }
}

TEST(InterruptionDeathTest, WhatWasIgnoredStaysSoAndAllIsAsBeforeAfterwards) {
    const auto interrupt = [] {
        signal(SIGINT, SIG_IGN);
        signal(SIGTERM, SIG_DFL);
        signal(SIGPIPE, SIG_DFL);
        {
            Interruption interruption;
            const InterruptOnSignals signals(interruption);
            raise(SIGINT);
            raise(SIGPIPE);
            raise(SIGXFSZ);
            const bool early = interruption.requested();
            raise(SIGTERM);
            if (early || !interruption.requested()) {
                _exit(1);
            }
        }
        _exit(handlerOf(SIGINT) == SIG_IGN && handlerOf(SIGTERM) == SIG_DFL && handlerOf(SIGPIPE) == SIG_DFL ? 0 : 2);
    };
    EXPECT_EXIT(interrupt(), testing::ExitedWithCode(0), "");
}

TEST(Interruption, EndsWhateverWaitsForAPipe) {
    const support::TemporaryFolder folder;
    const std::string rules = folder.write("rules.json", support::document({}));
    const std::string events = folder.write("events.jsonl", "{\"event\":\"Test\"}\n");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string path = "/dev/fd/" + std::to_string(ends[0]);
    const std::string test = folder.write(
        "a.test.json", R"({"rules":"rules.json","tests":[{"name":"a","expect":{},"events":")" + path + "\"}]}");
    // The pipe is standard input, too.
    const std::vector<std::string> cases[] = {
        {"check", path},
        {"check", rules, "--catalogue", path},
        {"check", rules, "--events", path},
        {"graph", path},
        {"graph", rules, "--events", path},
        {"graph", rules, "--events", events, "--context", path},
        {"run", path},
        {"run", rules, "--context", path},
        {"run", rules, path},
        {"run", rules},
        {"run", rules, "--summary-only", "--context", path},
        {"watch", path},
        {"watch", rules, "--context", path},
        {"summary", path},
        {"summary"},
        {"catalogue", path},
        {"test", path},
        {"test", test},
    };
    for (const auto& command : cases) {
        SCOPED_TRACE(testing::PrintToString(command));
        ASSERT_EQ(write(ends[1], "{", 1), 1);
        const support::MemoryFile out;
        const support::MemoryFile err;
        Interruption interruption;
        {
            // What is read stays without its end.
            const std::jthread user([&] {
                for (int unread = 1; unread > 0; ioctl(ends[0], FIONREAD, &unread)) {
                    std::this_thread::yield();
                }
                interruption.request();
            });
            EXPECT_EQ(support::runTool(command, {ends[0], out.descriptor, err.descriptor}, interruption), 130);
        }
        EXPECT_EQ(err.content(), "");
    }
    close(ends[0]);
    close(ends[1]);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
