#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/support/TestEvent.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/actions/PseudoRandomGenerator.h"

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::PseudoRandomGenerator;
using Brenta::OS::VIG::VIGManager;
using support::LogLine;
using support::TestEvent;
using testing::ElementsAre;
using testing::IsEmpty;

// The way of a rule document: device configuration, manager, callback, machine, trigger service.
TEST(EndToEnd, TheCompleteDocumentLogsZramAndSamplesTheProcessesOverBudget) {
    fakes::FakeDeviceConfig config;
    config.setResponse(std::string(support::kCompleteDocument));
    const support::FakeTriggerService service;
    const support::LogCapture log;
    support::Receiver receiver;
    {
        VIGManager manager;
        manager.registerCallback(receiver.callback());
        receiver.waitFor(1);
    }
    // The configurations outlive the manager.
    const auto configs = receiver.takeLatest();
    FiniteStateMachine& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    EXPECT_EQ(configs.at(0)->getConfigId(), 7);
    machine.start();
    log.takeLines();

    machine.onEvent(
        TestEvent({.uint64 = {{"memUsedMaxBytes", 7}, {"numCompressedDataBytes", 3}}}, EventType::ZramHeartBeat));
    EXPECT_THAT(log.takeLines(),
                ElementsAre(LogLine{ANDROID_LOG_INFO, "VIGManager",
                                    "Received VIG zram heart beat. memUsedMaxBytes: 7, numCompressedDataBytes: 3"}));

    const auto process = [](std::int64_t vmRssKB) {
        return TestEvent({.int64 = {{"vmRssKB", vmRssKB}, {"vmSwapKB", 0}}, .string = {{"processName", "camera"}}},
                         EventType::ProcessMemoryHeartBeat);
    };
    PseudoRandomGenerator::ofProcess().seed(5489);
    PseudoRandomGenerator draws(5489);
    machine.onEvent(process(2097152));  // not over budget, so no draw
    while (draws.draw() >= 0.1) {
        machine.onEvent(process(2097153));
        ASSERT_THAT(service.triggers(), IsEmpty());
    }
    machine.onEvent(process(2097153));
    machine.onEvent(process(2097153));
    EXPECT_EQ(service.triggers().size(), 1U);
    EXPECT_EQ(machine.getCurrentState()->getName(), "end");
}

}  // namespace
