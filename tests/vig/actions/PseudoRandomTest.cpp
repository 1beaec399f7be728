#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <latch>
#include <thread>

#include "tests/support/TemporaryFolder.h"
#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"
#include "vig/actions/PseudoRandomGenerator.h"

namespace {

using namespace Brenta::OS::VIG;

std::vector<double> drawn(PseudoRandomGenerator& generator, std::size_t count) {
    std::vector<double> values(count);
    std::generate(values.begin(), values.end(), [&generator] { return generator.draw(); });
    return values;
}

TEST(PseudoRandomGenerator, DrawsThePublishedSequenceOfItsSeed) {
    PseudoRandomGenerator generator(1);
    generator.seed(5489);
    const std::vector<double> values = drawn(generator, 5000);
    EXPECT_EQ(values[0], 0.1354770042967805);
    EXPECT_EQ(values[1], 0.8350085899945795);
    EXPECT_EQ(values[2], 0.9688677711242314);
    // The upper half is the second output of the two, here the ten thousandth.
    EXPECT_EQ(std::floor(values[4999] * 0x1p32), 4123659995.0);
    EXPECT_EQ(PseudoRandomGenerator::toDouble(3499211612, 581869302), values[0]);
}

TEST(PseudoRandomGenerator, StaysBelowOne) {
    EXPECT_EQ(PseudoRandomGenerator::toDouble(0, 0), 0.0);
    EXPECT_EQ(PseudoRandomGenerator::toDouble(1, 0), 0x1p-64);
    EXPECT_EQ(PseudoRandomGenerator::toDouble(4294966271, 4294967295), 0x1.fffffffffffffp-1);
    EXPECT_EQ(PseudoRandomGenerator::toDouble(4294966272, 4294967295), 0x1.fffffffffffffp-1);
    EXPECT_EQ(PseudoRandomGenerator::toDouble(4294967295, 4294967295), 0x1.fffffffffffffp-1);
}

TEST(PseudoRandomGenerator, ReadsAWholeSeedOrNone) {
    const support::TemporaryFolder folder;
    const auto seedOf = [](const std::filesystem::path& device) {
        errno = EINTR;  // left by an earlier call, which the end of a file is no reason to repeat
        return PseudoRandomGenerator::readSeed(device.c_str());
    };
    const std::uint32_t seed = 0x01020304;
    std::string bytes(sizeof seed, '\0');
    std::memcpy(bytes.data(), &seed, sizeof seed);
    EXPECT_EQ(seedOf(folder.write("device", bytes + "more")), seed);
    EXPECT_EQ(seedOf(folder.write("short", "123")), std::nullopt);
    EXPECT_EQ(seedOf(folder.write("empty", "")), std::nullopt);
    EXPECT_EQ(seedOf(folder.path("missing")), std::nullopt);
    EXPECT_EQ(seedOf(folder.path()), std::nullopt);  // can be opened, but not read
    EXPECT_TRUE(seedOf("/dev/urandom").has_value());
    // From a pipe it comes in pieces, and signals interrupt the wait for all but the first.
    const auto pipe = folder.path("in pieces");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    struct sigaction harmless {};
    struct sigaction previous {};
    harmless.sa_handler = [](int) {};
    sigaction(SIGUSR1, &harmless, &previous);
    std::thread writer([&, reader = pthread_self()] {
        const int end = open(pipe.c_str(), O_WRONLY);
        for (const char& byte : bytes) {
            for (int signals = 0; signals < 100 && &byte != bytes.data(); ++signals) {
                pthread_kill(reader, SIGUSR1);
                std::this_thread::yield();
            }
            EXPECT_EQ(write(end, &byte, 1), 1);
            for (int unread = 1; unread != 0 && ioctl(end, FIONREAD, &unread) == 0;) {
                std::this_thread::yield();
            }
        }
        close(end);
    });
    EXPECT_EQ(seedOf(pipe), seed);
    writer.join();
    sigaction(SIGUSR1, &previous, nullptr);
    // Where the process has no standard input, its descriptor goes to the device, and is free again afterwards.
    const int input = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    EXPECT_EQ(seedOf("/dev/zero"), 0U);
    EXPECT_EQ(open("/dev/null", O_RDONLY), STDIN_FILENO);
    if (input >= 0) {
        dup2(input, STDIN_FILENO);
        close(input);
    }
}

TEST(PseudoRandomGenerator, SeedsWithoutTheDeviceDifferByTimeAndProcess) {
    const std::uint64_t now = 0x17F1'2345'6789'ABCD;
    const std::int32_t process = 0x1234;
    const std::uint32_t seed = PseudoRandomGenerator::seedFrom(now, process);
    for (int bit = 0; bit < 64; ++bit) {
        EXPECT_NE(PseudoRandomGenerator::seedFrom(now ^ 1ULL << bit, process), seed) << bit;
    }
    for (int bit = 0; bit < 16; ++bit) {
        EXPECT_NE(PseudoRandomGenerator::seedFrom(now, process ^ 1 << bit), seed) << bit;
    }
}

TEST(PseudoRandomDouble, DrawsFromOneSequenceOnEveryThread) {
    constexpr std::size_t kDraws = 100000;
    PseudoRandomGenerator::ofProcess().seed(5489);
    std::vector<double> values(2 * kDraws);
    std::latch bothReady(2);
    const auto drawInto = [&](std::size_t begin) {
        const auto function = PseudoRandomDoublePureFunctionImpl::get();
        bothReady.arrive_and_wait();
        for (std::size_t i = begin; i < begin + kDraws; ++i) {
            values[i] = function();
        }
    };
    std::thread other(drawInto, kDraws);
    drawInto(0);
    other.join();
    PseudoRandomGenerator generator(5489);
    std::vector<double> expected = drawn(generator, 2 * kDraws);
    std::sort(values.begin(), values.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(values, expected);
}

}  // namespace
