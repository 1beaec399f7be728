#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <latch>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "tests/support/TemporaryFolder.h"
#include "vig/functions/DoubleFunctions.h"
#include "vig/functions/PseudoRandomDoublePureFunctionImpl.h"
#include "vig/functions/PseudoRandomGenerator.h"

namespace {

using namespace Brenta::OS::VIG;

// The file that is opened in the place of the random device; there is none if this is empty.
std::string randomDevice = "/dev/urandom";

}  // namespace

// Stands before the C library's. A build that counts lines creates files with it, too.
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    return openat(AT_FDCWD, std::string_view(path) == "/dev/urandom" ? randomDevice.c_str() : path, flags, 0600);
}

namespace {

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
    EXPECT_EQ(PseudoRandomGenerator::toDouble(1, 0), 0x1p-64);
    for (const std::uint32_t first : {4294966271U, 4294966272U, 4294967295U}) {
        EXPECT_EQ(PseudoRandomGenerator::toDouble(first, 4294967295), 0x1.fffffffffffffp-1);
    }
}

TEST(PseudoRandomGenerator, ReadsAWholeSeedOrNone) {
    const support::TemporaryFolder folder;
    const auto seedOf = [](const std::filesystem::path& device) {
        return PseudoRandomGenerator::readSeed(device.c_str());
    };
    EXPECT_EQ(seedOf(folder.write("device", "\1\1\1\1more")), 0x01010101U);
    EXPECT_EQ(seedOf(folder.write("short", "123")), std::nullopt);
    EXPECT_EQ(seedOf(folder.path("missing")), std::nullopt);
    EXPECT_EQ(seedOf(folder.path()), std::nullopt);  // can be opened, but not read
    EXPECT_TRUE(seedOf("/dev/urandom").has_value());
    // Where the process has no standard input, its descriptor goes to the device, and is free again afterwards.
    close(STDIN_FILENO);
    EXPECT_EQ(seedOf("/dev/zero"), 0U);
    EXPECT_EQ(open("/dev/null", O_RDONLY), STDIN_FILENO);
}

TEST(PseudoRandomGenerator, SeedsWithoutTheDeviceDifferByTimeAndProcess) {
    const std::uint64_t now = 0x17F1'2345'6789'ABCD;
    const std::uint32_t seed = PseudoRandomGenerator::seedFrom(now, 0x1234);
    for (int bit = 0; bit < 64; ++bit) {
        EXPECT_NE(PseudoRandomGenerator::seedFrom(now ^ 1ULL << bit, 0x1234), seed) << bit;
        EXPECT_NE(PseudoRandomGenerator::seedFrom(now, 0x1234 ^ 1 << bit % 16), seed) << bit;
    }
}

TEST(PseudoRandomGenerator, GivesEachNumberToOneThread) {
    PseudoRandomGenerator shared(5489), alone(5489);
    std::vector<double> values, others;
    std::latch bothReady(2);
    const auto drawInto = [&](std::vector<double>& drawnHere) {
        bothReady.arrive_and_wait();
        drawnHere = drawn(shared, 100'000);
    };
    std::thread other(drawInto, std::ref(others));
    drawInto(values);
    other.join();
    values.insert(values.end(), others.begin(), others.end());
    std::vector<double> expected = drawn(alone, values.size());
    std::sort(values.begin(), values.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(values, expected);
}

// Each in a process of its own, which has not drawn yet.
TEST(PseudoRandomDouble, IsDrawnFromTheSeedOfTheDeviceOrWhateverBecomesOfIt) {
    const support::TemporaryFolder folder;
    const std::pair<std::string, bool> cases[] = {
        {folder.write("seed", std::string("\x71\x15\0\0", 4)), true},  // 5489
        {"", false},
    };
    for (const auto& [device, givesSeed] : cases) {
        randomDevice = device;
        const auto drawAndExit = [expected = givesSeed] {
            const auto draw = PseudoRandomDoublePureFunctionImpl::get();
            const double first = draw();
            std::exit((first == 0.1354770042967805) == expected && first >= 0 && first < 1 && draw() != first ? 0 : 1);
        };
        EXPECT_EXIT(drawAndExit(), testing::ExitedWithCode(0), "") << device;
    }
    randomDevice = "/dev/urandom";
}

TEST(DoubleFunctions, AreInTheirRangeAndRandomAsTheTableSays) {
    for (const auto& each : Brenta::OS::VIG::kDoubleFunctions) {
        const auto function = each.get();
        std::set<double> results;
        for (int i = 0; i < 1000; ++i) {
            const double result = *results.insert(function()).first;
            EXPECT_TRUE(result >= each.least && result < each.limit) << each.name << result;
        }
        EXPECT_EQ(results.size() > 1, each.isRandom) << each.name;
    }
}

}  // namespace
