#include "tools/vig/io/Interruption.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/check/CatalogueCommand.h"
#include "tools/vig/check/CheckCommand.h"
#include "tools/vig/fleet/FleetCommand.h"
#include "tools/vig/fleet/SummaryCommand.h"
#include "tools/vig/graph/GraphCommand.h"
#include "tools/vig/run/RunCommand.h"
#include "tools/vig/test/TestCommand.h"
#include "tools/vig/watch/WatchCommand.h"

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

// A verb that reads a pipe.
struct PipeReader {
    const char* what;
    std::function<int(const std::string& pipe, const Console& console, const Interruption& interruption)> verb;
};

template <typename Options>
PipeReader reader(const char* what, int (*verb)(const Options&, const Console&, const Interruption&),
                  const std::function<void(Options&, const std::string& pipe)>& choose) {
    return {what, [=](const std::string& pipe, const Console& console, const Interruption& interruption) {
                Options options;
                choose(options, pipe);
                return verb(options, console, interruption);
            }};
}

TEST(Interruption, EndsWhateverWaitsForAPipe) {
    const support::TemporaryFolder folder;
    const std::string rules = folder.write("rules.json", support::document({}));
    const std::string events = folder.write("events.jsonl", "{\"event\":\"Test\"}\n");
    const auto rulesOf = [](auto& options, const auto& pipe) { options.rules = pipe; };
    const auto contextOf = [&](auto& options, const auto& pipe) {
        options.rules = rules;
        options.contextFile = pipe;
    };
    const auto eventsOf = [&](auto& options, const auto& pipe) {
        options.rules = rules;
        options.events = pipe;
    };
    const PipeReader cases[] = {
        reader<CheckOptions>("rules of check", check, [](auto& options, const auto& pipe) { options.rules = {pipe}; }),
        reader<CheckOptions>("catalogue of check", check,
                             [](auto& options, const auto& pipe) { options.catalogueFile = pipe; }),
        reader<CheckOptions>("events of check", check,
                             [](auto& options, const auto& pipe) { options.eventsFile = pipe; }),
        reader<GraphOptions>("rules of graph", graph, rulesOf),
        reader<GraphOptions>("events of graph", graph, eventsOf),
        reader<GraphOptions>("context of graph", graph,
                             [&](auto& options, const auto& pipe) {
                                 contextOf(options, pipe);
                                 options.events = events;
                             }),
        reader<RunOptions>("rules of run", run, rulesOf),
        reader<RunOptions>("context of run", run, contextOf),
        reader<RunOptions>("events of run", run, eventsOf),
        reader<RunOptions>("standard input of run", run,
                           [&](auto& options, const auto& /*pipe*/) { options.rules = rules; }),
        reader<FleetOptions>("context of a fleet", fleet, contextOf),
        reader<WatchOptions>("rules of watch", watch, rulesOf),
        reader<WatchOptions>("context of watch", watch, contextOf),
        reader<SummaryOptions>("summary", summary, [](auto& options, const auto& pipe) { options.files = {pipe}; }),
        reader<SummaryOptions>("standard input of summary", summary, [](auto& /*options*/, const auto& /*pipe*/) {}),
        reader<CatalogueOptions>("events of catalogue", catalogue,
                                 [](auto& options, const auto& pipe) { options.events = pipe; }),
        reader<TestOptions>("test file", test, [](auto& options, const auto& pipe) { options.files = {pipe}; }),
        reader<TestOptions>("events of test", test,
                            [&](auto& options, const auto& pipe) {
                                const std::string test = R"({"name":"a","expect":{},"events":")" + pipe + "\"}";
                                options.files = {
                                    folder.write("a.test.json", R"({"rules":"rules.json","tests":[)" + test + "]}")};
                            }),
    };
    for (const auto& each : cases) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
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
            const std::string path = "/dev/fd/" + std::to_string(ends[0]);
            EXPECT_EQ(each.verb(path, {ends[0], out.descriptor, err.descriptor}, interruption), 130) << each.what;
        }
        EXPECT_EQ(err.content(), "") << each.what;
        close(ends[0]);
        close(ends[1]);
    }
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
