#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"
#include "vig/actions/PseudoRandomGenerator.h"

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::PseudoRandomGenerator;
using Brenta::OS::VIG::VIGManager;
using support::TestEvent;

const std::string kTrigger = R"([{"name":"TriggerVelora"}])";

std::string documentOf(std::size_t machines) {
    const std::string config =
        support::config(1, {support::transition("start", "start", "ProcessMemoryHeartBeat",
                                                support::filters({"double PseudoRandomDouble() < =0.5"}), kTrigger),
                            support::transition("start", "end", "Test", "[]", R"([{"name":"LogZramHeartBeat"}])")});
    return support::document(std::vector<std::string>(machines, config));
}

TestEvent overBudget() {
    return TestEvent({.int64 = {{"vmRssKB", 1}, {"vmSwapKB", 2}}, .string = {{"processName", "camera"}}},
                     EventType::ProcessMemoryHeartBeat);
}

TEST(Machines, SixtyFourOnFourThreadsShareOnlyTheirSequenceOfRandomNumbers) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kMachines = 64;
    constexpr std::size_t kEvents = 50;
    const support::FakeTriggerService service;
    const support::LogCapture log;
    const auto configs = VIGManager().parseResponse(documentOf(kMachines));
    ASSERT_EQ(configs.size(), kMachines);
    PseudoRandomGenerator::ofProcess().seed(5489);
    std::latch ready(kThreads);
    const auto drive = [&](std::size_t first) {
        ready.arrive_and_wait();
        for (std::size_t event = 0; event <= kEvents; ++event) {
            for (std::size_t index = first; index < kMachines; index += kThreads) {
                FiniteStateMachine& machine = *configs[index]->getConfigPayload()->getFiniteStateMachine();
                event == 0 ? machine.start() : machine.onEvent(overBudget());
            }
        }
        for (std::size_t index = first; index < kMachines; index += kThreads) {
            configs[index]->getConfigPayload()->getFiniteStateMachine()->onEvent(TestEvent({}));
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < kThreads; ++first) {
        threads.emplace_back(drive, first);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    // Each event takes one number, whichever machine gets which.
    PseudoRandomGenerator generator(5489);
    std::size_t expected = 0;
    for (std::size_t draw = 0; draw < kMachines * kEvents; ++draw) {
        expected += generator.draw() < 0.5 ? 1 : 0;
    }
    EXPECT_EQ(service.triggers().size(), expected);
    EXPECT_EQ(log.lines().size(), kMachines);
    for (const auto& config : configs) {
        EXPECT_EQ(config->getConfigPayload()->getFiniteStateMachine()->getCurrentState()->getName(), "end");
    }
}

// Waits within its call until it may answer.
struct BlockingService : vendor::orlan::velora::BnTrigger {
    android::binder::Status trigger(const vendor::orlan::velora::TriggerContext& /*context*/) override {
        called.set_value();
        mayAnswer.get_future().wait();
        return android::binder::Status::ok();
    }

    std::promise<void> called;
    std::promise<void> mayAnswer;
};

TEST(Machines, ATriggerServiceThatBlocksHoldsUpOnlyTheMachineThatCallsIt) {
    const android::String16 name("vendor.orlan.velora.ITrigger/default");
    const auto service = android::sp<BlockingService>::make();
    android::defaultServiceManager()->addService(name, service);
    const support::LogCapture log;
    const std::string calling = support::transition("start", "end", "ProcessMemoryHeartBeat", "[]", kTrigger);
    const auto blocked = VIGManager().parseResponse(support::documentOf({calling}));
    FiniteStateMachine& machine = *blocked.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    std::thread caller([&] { machine.onEvent(overBudget()); });
    service->called.get_future().wait();

    const auto others = VIGManager().parseResponse(documentOf(1));
    FiniteStateMachine& other = *others.at(0)->getConfigPayload()->getFiniteStateMachine();
    other.start();
    other.onEvent(TestEvent({}));
    EXPECT_EQ(other.getCurrentState()->getName(), "end");

    service->mayAnswer.set_value();
    caller.join();
    EXPECT_EQ(machine.getCurrentState()->getName(), "end");
    host::removeService(name);
}

}  // namespace
