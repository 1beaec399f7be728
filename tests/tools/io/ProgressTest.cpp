#include "tools/vig/io/Progress.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tests/tools/PseudoTerminal.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using std::chrono::milliseconds;

class ProgressOnTerminal : public testing::Test {
  protected:
    const support::PseudoTerminal terminal;
    milliseconds time{0};
    const std::function<Progress::Clock::time_point()> clock = [this] { return Progress::Clock::time_point(time); };
};

TEST_F(ProgressOnTerminal, LineIsRewrittenTwiceASecondAndIsGoneWhenSomethingIsSaid) {
    Progress progress(terminal.descriptor(), {3, 10'000}, clock);
    const std::string clear = "\r\x1b[K";
    time = milliseconds(999);
    progress.addRead(100, 1000);
    progress.clear();
    EXPECT_EQ(terminal.shown(), "");
    time = milliseconds(1000);
    progress.addRead(100, 1500);
    EXPECT_EQ(terminal.shown(), clear + "0 of 3 devices, 200 events, 200 a second, 3 s left");
    time = milliseconds(1499);
    progress.addDevice();
    EXPECT_EQ(terminal.shown(), "");
    time = milliseconds(1600);
    progress.addRead(400, 2500);
    EXPECT_EQ(terminal.shown(), clear + "1 of 3 devices, 600 events, 375 a second, 2 s left");
    time = milliseconds(2099);
    progress.addDevice();
    EXPECT_EQ(terminal.shown(), "");
    progress.aside([&] { EXPECT_EQ(write(terminal.descriptor(), "said\n", 5), 5); });
    EXPECT_EQ(terminal.shown(), clear + "said\r\n");
    progress.clear();
    EXPECT_EQ(terminal.shown(), "");
}

TEST_F(ProgressOnTerminal, TellsWhatIsKnown) {
    const struct {
        Progress::Whole whole;
        int devices;
        std::uint64_t bytes;
        milliseconds time;
        std::string_view line;
    } cases[] = {
        {{0, 0}, 0, 10, milliseconds(2000), "1000 events, 500 a second"},
        {{0, 0}, 1, 10, milliseconds(2000), "1 device, 1000 events, 500 a second"},
        {{2, 0}, 1, 10, milliseconds(4000), "1 of 2 devices, 1000 events, 250 a second"},
        {{0, 100}, 0, 10, milliseconds(20'000), "1000 events, 50 a second, 3 min left"},
        {{0, 100}, 0, 1, milliseconds(100'000), "1000 events, 10 a second, 3 h left"},
        {{0, 100}, 0, 0, milliseconds(10'000), "1000 events, 100 a second"},
        // The file has grown.
        {{0, 100}, 0, 101, milliseconds(10'000), "1000 events, 100 a second"},
    };
    for (const auto& each : cases) {
        time = milliseconds(0);
        Progress progress(terminal.descriptor(), each.whole, clock);
        for (int i = 0; i < each.devices; ++i) {
            progress.addDevice();
        }
        time = each.time;
        progress.addRead(1000, each.bytes);
        EXPECT_EQ(terminal.shown(), "\r\x1b[K" + std::string(each.line));
        progress.clear();
        terminal.shown();
    }
}

TEST_F(ProgressOnTerminal, RecordingIsToldInStepsAndToItsEnd) {
    Progress progress(terminal.descriptor(), {0, 0}, clock);
    ReadingProgress reading(progress);
    time = milliseconds(2000);
    for (std::uint64_t event = 1; event <= 1030; ++event) {
        reading.update(event, 10 * event);
    }
    EXPECT_EQ(terminal.shown(), "\r\x1b[K1024 events, 512 a second");
    time = milliseconds(10'000);
    reading.tell(1030, 10'300);
    EXPECT_EQ(terminal.shown(), "\r\x1b[K1030 events, 103 a second");
}

TEST_F(ProgressOnTerminal, NothingIsWrittenToAnythingElse) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        Progress progress(ends[1], {1, 1}, clock);
        time = milliseconds(5000);
        progress.addRead(1, 1);
    }
    pollfd ready = {ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&ready, 1, 0), 0);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
