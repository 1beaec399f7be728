#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/Host.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/support/TemporaryFolder.h"
#include "vig/VIGManager.h"

namespace {

TEST(FailedChecks, FiveInRealTimeTakeAboutThirtyOneSeconds) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> messages;
    std::vector<long> seconds;
    const auto previous = host::setLogSink([&](int, std::string_view, std::string_view message) {
        messages.emplace_back(message);
        seconds.push_back(
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count());
    });
    support::Receiver receiver;
    {
        Brenta::OS::VIG::VIGManager manager;  // nothing is bound, so the service is not there
        manager.registerCallback(receiver.callback());
    }
    host::setLogSink(previous);
    EXPECT_THAT(messages, testing::Each("ViG device config is not available yet."));
    const auto about = [](long value) { return testing::AllOf(testing::Ge(value), testing::Le(value + 2)); };
    EXPECT_THAT(seconds, testing::ElementsAre(about(1), about(3), about(7), about(15), about(31)));
    EXPECT_THAT(receiver.sizes(), testing::IsEmpty());
}

TEST(FailedChecks, ARegistrationInTheSleepOfEightSecondsIsServedAtOnce) {
    const support::TemporaryFolder folder;
    const support::LogCapture log;
    support::Receiver receiver;
    host::bindProperty("korvel_vig", "vig_response", folder.path("later/rules.json"));
    Brenta::OS::VIG::VIGManager manager;
    manager.registerCallback(nullptr);
    EXPECT_TRUE(log.sees("ViG device config is not available yet.", 3));
    std::filesystem::create_directory(folder.path("later"));
    const auto begin = std::chrono::steady_clock::now();
    manager.registerCallback(receiver.callback());
    receiver.waitFor(1);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

}  // namespace
