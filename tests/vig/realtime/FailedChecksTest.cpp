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

using std::chrono::steady_clock;
constexpr const char* kNotAvailable = "ViG device config is not available yet.";

TEST(FailedChecks, FiveInRealTimeTakeAboutThirtyOneSeconds) {
    const auto start = steady_clock::now();
    const support::LogCapture log;
    support::Receiver receiver;
    std::vector<long> seconds;
    {
        Brenta::OS::VIG::VIGManager manager;  // nothing is bound, so the service is not there
        manager.registerCallback(receiver.callback());
        for (int checks = 1; checks <= 5; ++checks) {
            EXPECT_TRUE(log.sees(kNotAvailable, checks));
            seconds.push_back(std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - start).count());
        }
    }
    const auto about = [](long value) { return testing::AllOf(testing::Ge(value), testing::Le(value + 2)); };
    EXPECT_THAT(seconds, testing::ElementsAre(about(1), about(3), about(7), about(15), about(31)));
    EXPECT_THAT(log.messages(), testing::ElementsAreArray(std::vector(5, kNotAvailable)));
    EXPECT_THAT(receiver.sizes(), testing::IsEmpty());
}

TEST(FailedChecks, ARegistrationInTheSleepOfEightSecondsIsServedAtOnce) {
    const support::TemporaryFolder folder;
    const support::LogCapture log;
    support::Receiver receiver;
    host::bindProperty("korvel_vig", "vig_response", folder.path("later/rules.json"));
    Brenta::OS::VIG::VIGManager manager;
    manager.registerCallback(nullptr);
    EXPECT_TRUE(log.sees(kNotAvailable, 3));
    std::filesystem::create_directory(folder.path("later"));
    const auto begin = steady_clock::now();
    manager.registerCallback(receiver.callback());
    receiver.waitFor(1);
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(5));
}

}  // namespace
