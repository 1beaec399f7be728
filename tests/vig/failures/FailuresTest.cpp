#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "tests/support/TemporaryFolder.h"
#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"

namespace {

// The file that is opened in the place of the random device; there is none if this is empty.
std::string randomDevice;

}  // namespace

// Stands before the C library's. A build that counts lines creates files with it, too.
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    return openat(AT_FDCWD, std::string_view(path) == "/dev/urandom" ? randomDevice.c_str() : path, flags, 0600);
}

namespace {

// Each in a process of its own, which has not drawn yet.
TEST(RandomDevice, GivesTheSeedAndNumbersAreDrawnWhateverBecomesOfIt) {
    const support::TemporaryFolder folder;
    const std::uint32_t seed = 5489;
    const std::pair<std::string, bool> cases[] = {
        {folder.write("seed", std::string(reinterpret_cast<const char*>(&seed), sizeof seed)), true},
        {"", false},
        {folder.write("short", "12"), false},
    };
    for (const auto& [device, givesSeed] : cases) {
        randomDevice = device;
        const auto drawAndExit = [expected = givesSeed] {
            const auto draw = Brenta::OS::VIG::PseudoRandomDoublePureFunctionImpl::get();
            const double first = draw();
            std::exit((first == 0.1354770042967805) == expected && first >= 0 && first < 1 && draw() != first ? 0 : 1);
        };
        EXPECT_EXIT(drawAndExit(), testing::ExitedWithCode(0), "") << device;
    }
}

}  // namespace
