#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "examples/minimal_platform/MinimalPlatform.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/Receiver.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"

namespace {

using android::String16;
using Brenta::OS::RulesEngine::EventType;
using vendor::orlan::velora::TriggerContext;

struct TriggerService final : vendor::orlan::velora::ITrigger {
    android::binder::Status trigger(const TriggerContext& context) override {
        contexts.push_back(context);
        return {};
    }

    std::vector<TriggerContext> contexts;
};

TEST(Seam, TheLibraryLivesOnAnotherPlatform) {
    const auto service = std::make_shared<TriggerService>();
    minimal::setTriggerService(service);
    support::Receiver receiver;
    {
        Brenta::OS::VIG::VIGManager manager;
        manager.registerCallback(receiver.callback());
        receiver.waitFor(1);
        minimal::waitForListener();
        minimal::setResponse(support::documentOf(
            {support::transition("start", "end", "ProcessMemoryHeartBeat", "[]", R"([{"name":"TriggerVelora"}])")}));
        receiver.waitFor(2);
    }
    EXPECT_THAT(receiver.sizes(), testing::ElementsAre(0, 1));
    EXPECT_THAT(minimal::logged(), testing::UnorderedElementsAre("ViG device config is available now.",
                                                                 "ViG response is updated in QDC!"));

    const auto configs = receiver.takeLatest();
    auto& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    machine.onEvent(
        support::TestEvent({.int64 = {{"vmRssKB", 1000}, {"vmSwapKB", 24}}, .string = {{"processName", "camera"}}},
                           EventType::ProcessMemoryHeartBeat));
    ASSERT_EQ(service->contexts.size(), 1U);
    const TriggerContext& context = service->contexts[0];
    EXPECT_EQ(context.triggerName, String16("vig:memory_heartbeat_over_budget:camera"));
    EXPECT_EQ(context.processName, String16("camera"));
    EXPECT_EQ(context.reserved, 0);
    EXPECT_EQ(context.metadata.value().at(0), String16("threshold_current_value:1024"));

    minimal::setTriggerService(nullptr);
    machine.enterState(machine.getStateByName("start"));
    machine.onEvent(support::TestEvent({.string = {{"processName", "camera"}}}, EventType::ProcessMemoryHeartBeat));
    EXPECT_EQ(minimal::logged().back(), "Error while getting the service proxy: -2 , triggerService is null!");
}

}  // namespace
