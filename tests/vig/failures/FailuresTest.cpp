#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/DeviceConfigFiles.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/vig/failures/Faults.h"
#include "vig/VIGManager.h"
#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"

namespace {

namespace fs = std::filesystem;

using testing::ExitedWithCode;

// Each in a process of its own, which has not drawn yet.
TEST(RandomDevice, GivesTheSeedAndNumbersAreDrawnWhateverBecomesOfIt) {
    const support::TemporaryFolder folder;
    const std::uint32_t seed = 5489;
    const struct {
        faults::Opening opening;
        bool givesSeed;
    } cases[] = {
        {{folder.write("seed", std::string(reinterpret_cast<const char*>(&seed), sizeof seed)), 0}, true},
        {{"", ENOENT}, false},
        {{folder.write("short", "12"), 0}, false},
    };
    const auto drawAndExit = [](const faults::Opening& opening, bool givesSeed) {
        faults::openings["/dev/urandom"] = opening;
        const auto draw = Brenta::OS::VIG::PseudoRandomDoublePureFunctionImpl::get();
        const double first = draw();
        std::exit((first == 0.1354770042967805) == givesSeed && first >= 0 && first < 1 && draw() != first ? 0 : 1);
    };
    for (const auto& [opening, givesSeed] : cases) {
        EXPECT_EXIT(drawAndExit(opening, givesSeed), ExitedWithCode(0), "") << opening.instead << opening.error;
    }
}

std::string documentNumber(std::size_t number) {
    return support::document(std::vector<std::string>(number, support::config(1, {})));
}

// A manager with the host's own device configuration, and the file that it follows.
class RulesFile : public testing::Test {
  protected:
    RulesFile() {
        replace(documentNumber(1));
        host::bindProperty("korvel_vig", "vig_response", path);
    }
    ~RulesFile() override {
        faults::openings.clear();
        faults::watchError = 0;
    }

    void begin() {
        manager = std::make_unique<Brenta::OS::VIG::VIGManager>();
        manager->registerCallback(receiver.callback());
        ASSERT_TRUE(log.sees("ViG device config is available now."));
        EXPECT_THAT(receiver.sizes(), testing::ElementsAre(1));
    }

    void replace(const std::string& text) const { fs::rename(folder.write("new", text), path); }

    // Whether the latest delivery has that many configurations, now or soon.
    bool sees(std::size_t size) {
        for (std::size_t deliveries = 1; !HasFailure(); ++deliveries) {
            receiver.waitFor(deliveries);
            if (receiver.sizes().back() == size) {
                return true;
            }
        }
        return false;
    }

    const support::TemporaryFolder folder;
    const fs::path path = folder.path("rules.json");
    const support::LogCapture log;
    support::Receiver receiver;
    std::unique_ptr<Brenta::OS::VIG::VIGManager> manager;
};

TEST_F(RulesFile, WhateverBecomesOfItIsDeliveredAndSoIsTheNextGoodOne) {
    const struct {
        const char* fate;
        std::function<void()> change;
        std::size_t delivered;
    } cases[] = {
        {"replaced by rename", [&] { replace(documentNumber(2)); }, 2},
        {"truncated and written in pieces",
         [&] {
             std::ofstream file(path);
             for (const char each : documentNumber(2)) {
                 file << each << std::flush;
             }
         },
         2},
        {"deleted and created again",
         [&] {
             fs::remove(path);
             folder.write("rules.json", documentNumber(2));
         },
         2},
        {"deleted", [&] { fs::remove(path); }, 0},
        {"a folder",
         [&] {
             fs::create_directory(folder.path("folder"));
             ASSERT_EQ(renameat2(AT_FDCWD, folder.path("folder").c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE), 0);
         },
         0},
        {"a pipe",
         [&] {
             ASSERT_EQ(mkfifo(folder.path("new").c_str(), 0600), 0);
             fs::rename(folder.path("new"), path);
         },
         0},
        {"0 bytes", [&] { folder.write("rules.json", ""); }, 0},
        {"half a document", [&] { folder.write("rules.json", documentNumber(2).substr(0, 40)); }, 0},
        {"100 MB", [&] { replace(std::string(100'000'000, ' ') + documentNumber(2)); }, 2},
    };
    begin();
    std::size_t good = 10;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.fate);
        each.change();
        EXPECT_TRUE(sees(each.delivered));
        fs::remove_all(path);
        fs::remove(folder.path("folder"));
        replace(documentNumber(++good));
        EXPECT_TRUE(sees(good));
    }
}

TEST_F(RulesFile, UnreadableOneReadsAsNoConfigurationsAndTheNextManagerReadsItMended) {
    faults::openings[path.filename()] = {"", EACCES};
    manager = std::make_unique<Brenta::OS::VIG::VIGManager>();
    manager->registerCallback(receiver.callback());
    ASSERT_TRUE(log.sees("ViG device config is available now."));
    EXPECT_THAT(receiver.sizes(), testing::ElementsAre(0));
    manager->deregisterCallback();
    manager.reset();
    faults::openings.clear();
    support::Receiver second;
    manager = std::make_unique<Brenta::OS::VIG::VIGManager>();
    manager->registerCallback(second.callback());
    second.waitFor(1);
    EXPECT_THAT(second.sizes(), testing::ElementsAre(1));
}

TEST_F(RulesFile, IsReadWholeThoughItIsReplacedMeanwhile) {
    begin();
    std::thread writer([this] {
        for (std::size_t round = 0; round < 300; ++round) {
            replace(documentNumber(2 + round % 2) + std::string(200'000, ' '));
        }
        replace(documentNumber(9));
    });
    EXPECT_TRUE(sees(9));
    writer.join();
    EXPECT_THAT(receiver.sizes(), testing::Each(testing::AnyOf(1, 2, 3, 9)));
}

TEST_F(RulesFile, IsDeliveredOnceIfTheSystemHasNoWatchesLeft) {
    faults::watchError = ENOSPC;
    begin();
    EXPECT_THAT(log.messages(), testing::Contains("Changes of files go unnoticed: No space left on device."));
    replace(documentNumber(2));
    manager.reset();
    EXPECT_THAT(receiver.sizes(), testing::ElementsAre(1));
}

}  // namespace
