#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "examples/minimal_platform/MinimalPlatform.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/Receiver.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"

namespace {

using android::String16;

struct TriggerService final : vendor::orlan::velora::ITrigger {
    android::binder::Status trigger(const vendor::orlan::velora::TriggerContext& context) override {
        latest = context;
        return {};
    }

    vendor::orlan::velora::TriggerContext latest;
};

TEST(Seam, TheLibraryLivesOnAnotherPlatform) {
    support::Receiver receiver;
    {
        Brenta::OS::VIG::VIGManager manager;
        manager.registerCallback(receiver.callback());
        receiver.waitFor(1);
        minimal::waitForListener();
        minimal::setResponse(support::documentOf(
            {support::transition("start", "start", "ProcessMemoryHeartBeat", "[]", R"([{"name":"TriggerVelora"}])")}));
    }
    EXPECT_THAT(receiver.sizes(), testing::ElementsAre(0, 1));
    const auto configs = receiver.takeLatest();
    auto& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    const support::TestEvent event(
        {.int64 = {{"vmRssKB", 1000}, {"vmSwapKB", 24}}, .string = {{"processName", "camera"}}},
        Brenta::OS::RulesEngine::EventType::ProcessMemoryHeartBeat);
    machine.onEvent(event);
    EXPECT_EQ(minimal::logged().back(), "Error while getting the service proxy: -2 , triggerService is null!");

    const auto service = std::make_shared<TriggerService>();
    minimal::setTriggerService(service);
    machine.onEvent(event);
    EXPECT_EQ(service->latest.triggerName, String16("vig:memory_heartbeat_over_budget:camera"));
    EXPECT_EQ(service->latest.metadata.value().at(0), String16("threshold_current_value:1024"));
}

}  // namespace
