#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/support/TemporaryFolder.h"
#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"

namespace {

// What becomes of the random device: a file that is opened in its place, or an error if that is empty.
std::string randomDevice;

}  // namespace

// Stands before the C library's.
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    static const auto real = reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
    std::va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    const bool isRandomDevice = std::string_view(path) == "/dev/urandom";
    return real(isRandomDevice ? randomDevice.c_str() : path, flags, mode);
}

namespace {

// Each in a process of its own, which has not drawn yet.
TEST(RandomDevice, GivesTheSeedAndNumbersAreDrawnWhateverBecomesOfIt) {
    const support::TemporaryFolder folder;
    const std::uint32_t seed = 5489;
    const struct {
        std::string device;
        bool givesSeed;
    } cases[] = {
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
