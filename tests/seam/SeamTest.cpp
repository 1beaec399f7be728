#include "tests/seam/Driver.h"

#include <deviceconfig/DeviceConfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utils/String16.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/Receiver.h"
#include "tests/support/TestEvent.h"
#include "vig/ResponseProperty.h"
#include "vig/VIGManager.h"

namespace {

using android::String16;
using Brenta::OS::VIG::VIGManager;
using vendor::orlan::velora::TriggerContext;

// It has all messages of the log. It is never destroyed, because threads may log until the end.
class Log {
  public:
    static Log& ofProcess() {
        static Log& log = *new Log;
        return log;
    }

    testing::AssertionResult sees(std::string_view message) {
        std::unique_lock lock(mutex);
        const bool isSeen = logged.wait_for(lock, std::chrono::seconds(30),
                                            [&] { return std::ranges::find(messages, message) != messages.end(); });
        return (isSeen ? testing::AssertionSuccess() : testing::AssertionFailure())
               << "the log has " << testing::PrintToString(messages);
    }

  private:
    Log() {
        seam::sendLogTo([this](std::string_view message) {
            const std::lock_guard lock(mutex);
            messages.emplace_back(message);
            logged.notify_all();
        });
    }

    std::mutex mutex;
    std::condition_variable logged;
    std::vector<std::string> messages;  // guarded by mutex
};

const std::string kDocument = support::documentOf(
    {support::transition("start", "start", "ProcessMemoryHeartBeat", "[]", R"([{"name":"TriggerVelora"}])")});

TEST(Seam, DocumentsAreDelivered) {
    Log& log = Log::ofProcess();
    seam::setResponse(support::document({}));
    support::Receiver receiver;
    {
        VIGManager manager;
        manager.registerCallback([&, receive = receiver.callback()](auto&& configs) {
            // A platform that holds a lock while it tells a listener hangs here.
            EXPECT_NE(manager.getConfig(), "");
            receive(std::move(configs));
        });
        receiver.waitFor(1);
        ASSERT_TRUE(log.sees(Brenta::OS::VIG::kListeningMessage));
        seam::setResponse(kDocument);
        receiver.waitFor(2);
        EXPECT_EQ(manager.getConfig(), kDocument);
    }
    // Nobody listens any more.
    seam::setResponse(support::document({}));
    EXPECT_THAT(receiver.sizes(), testing::ElementsAre(0, 1));
    com::korvel::deviceconfig::DeviceConfig config;
    EXPECT_EQ(config.getProperties("korvel_vig", {"absent"}).getString("absent", "fallback"), "fallback");
}

TEST(Seam, ATriggerReachesTheService) {
    Log& log = Log::ofProcess();
    const auto configs = VIGManager().parseResponse(kDocument);
    auto& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    const support::TestEvent event(
        {.int64 = {{"vmRssKB", 1000}, {"vmSwapKB", 24}}, .string = {{"processName", "camera"}}},
        Brenta::OS::RulesEngine::EventType::ProcessMemoryHeartBeat);
    machine.onEvent(event);
    EXPECT_TRUE(log.sees("Error while getting the service proxy: -2 , triggerService is null!"));

    std::optional<TriggerContext> asked;
    seam::addTriggerService([&](const TriggerContext& context) { asked = context; });
    machine.onEvent(event);
    ASSERT_TRUE(asked);
    EXPECT_TRUE(asked->triggerName == String16("vig:memory_heartbeat_over_budget:camera"));
    EXPECT_TRUE(asked->processName == String16("camera"));
    EXPECT_TRUE(asked->metadata->at(0) == String16("threshold_current_value:1024"));
}

}  // namespace
