#include <dlfcn.h>
#include <gtest/gtest.h>
#include <host/Host.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

auto entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

bool isLoaded() {
    void* const library = dlopen(VIG_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    return library != nullptr && dlclose(library) == 0;
}

// This executable is not linked with the library.
TEST(Unloading, LibraryComesAndGoesAndLeavesNothingBehind) {
    const support::TemporaryFolder folder;
    const std::string draw = support::filters({"double PseudoRandomDouble() < =1"});
    const std::string rules = support::documentOf({support::transition("start", "end", "Test", draw)});
    host::bindProperty("korvel_vig", "vig_response", folder.write("rules.json", rules));
    const support::LogCapture log;
    const auto threads = entriesOf("/proc/self/task");
    const auto files = entriesOf("/proc/self/fd");
    for (int round = 0; round < 50; ++round) {
        void* const plugin = dlopen(VIG_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(plugin, nullptr) << dlerror();
        EXPECT_TRUE(isLoaded());
        const auto useLibrary = reinterpret_cast<bool (*)()>(dlsym(plugin, "useLibrary"));
        EXPECT_TRUE(useLibrary());
        dlclose(plugin);
        ASSERT_FALSE(isLoaded());
    }
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
    EXPECT_EQ(entriesOf("/proc/self/fd"), files);
}

}  // namespace
