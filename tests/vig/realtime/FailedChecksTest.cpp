#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/Host.h>

#include <chrono>
#include <filesystem>
#include <vector>

#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/support/TemporaryFolder.h"
#include "vig/VIGManager.h"

namespace {

TEST(FailedChecks, ComeAfterOneTwoAndFourRealSecondsAndARegistrationInTheSleepOfEightIsServedAtOnce) {
    const auto start = std::chrono::steady_clock::now();
    const auto passed = [&] { return (std::chrono::steady_clock::now() - start) / std::chrono::seconds(1); };
    const support::TemporaryFolder folder;
    const support::LogCapture log;
    support::Receiver receiver;
    std::vector<std::int64_t> seconds;
    host::bindProperty("korvel_vig", "vig_response", folder.path("later/rules.json"));
    Brenta::OS::VIG::VIGManager manager;
    manager.registerCallback(nullptr);
    for (int checks = 1; checks <= 3; ++checks) {
        EXPECT_TRUE(log.sees("ViG device config is not available yet.", checks));
        seconds.push_back(passed());
    }
    std::filesystem::create_directory(folder.path("later"));
    manager.registerCallback(receiver.callback());
    receiver.waitFor(1);
    seconds.push_back(passed());
    const auto about = [](long value) { return testing::AllOf(testing::Ge(value), testing::Le(value + 2)); };
    EXPECT_THAT(seconds, testing::ElementsAre(about(1), about(3), about(7), about(7)));
}

}  // namespace
