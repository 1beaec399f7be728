#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/LogSink.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/support/Receiver.h"
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

}  // namespace
