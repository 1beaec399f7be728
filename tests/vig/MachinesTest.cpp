#include <gtest/gtest.h>

#include <latch>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"
#include "vig/functions/PseudoRandomGenerator.h"

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::PseudoRandomGenerator;
using support::TestEvent;

const std::string kTrigger = R"([{"name":"TriggerVelora"}])";

// The machines of a document, which outlive the manager that has parsed it.
std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> parsed(const std::string& document) {
    return Brenta::OS::VIG::VIGManager().parseResponse(document);
}

FiniteStateMachine& machineOf(const std::unique_ptr<Brenta::OS::VIG::VIGConfig>& config) {
    return *config->getConfigPayload()->getFiniteStateMachine();
}

TestEvent overBudget() {
    return TestEvent({.int64 = {{"vmRssKB", 1}, {"vmSwapKB", 2}}, .string = {{"processName", "camera"}}},
                     EventType::ProcessMemoryHeartBeat);
}

TEST(Machines, SixtyFourOnFourThreadsShareOnlyTheirSequenceOfRandomNumbers) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kMachines = 64;
    constexpr std::size_t kEvents = 50;
    support::FakeTriggerService service;
    const support::LogCapture log;
    // Whoever calls the trigger service first waits there for the others: none holds them up.
    std::latch allCall(kThreads);
    service.answer([&allCall] {
        thread_local std::once_flag called;
        std::call_once(called, [&] { allCall.arrive_and_wait(); });
        return android::binder::Status::ok();
    });
    const std::string config =
        support::config(1, {support::transition("start", "start", "ProcessMemoryHeartBeat",
                                                support::filters({"double PseudoRandomDouble() < =0.5"}), kTrigger),
                            support::transition("start", "end", "Test", "[]", R"([{"name":"LogZramHeartBeat"}])")});
    const auto configs = parsed(support::document(std::vector(kMachines, config)));
    ASSERT_EQ(configs.size(), kMachines);
    PseudoRandomGenerator::ofProcess().seed(5489);
    std::latch ready(kThreads);
    std::vector<std::jthread> threads;
    for (std::size_t first = 0; first < kThreads; ++first) {
        threads.emplace_back([&, first] {
            ready.arrive_and_wait();
            for (std::size_t index = first; index < kMachines; index += kThreads) {
                FiniteStateMachine& machine = machineOf(configs[index]);
                machine.start();
                for (std::size_t event = 0; event < kEvents; ++event) {
                    machine.onEvent(overBudget());
                }
                machine.onEvent(TestEvent({}));
            }
        });
    }
    threads.clear();
    // Each event takes one number, whichever machine gets which.
    PseudoRandomGenerator generator(5489);
    std::size_t expected = 0;
    for (std::size_t draw = 0; draw < kMachines * kEvents; ++draw) {
        expected += generator.draw() < 0.5 ? 1 : 0;
    }
    ASSERT_EQ(service.triggers().size(), expected);
    EXPECT_EQ(service.triggers()[0].triggerName, "vig:memory_heartbeat_over_budget:camera");
    EXPECT_EQ(log.lines().size(), kMachines);
    for (const auto& each : configs) {
        EXPECT_EQ(machineOf(each).getCurrentState()->getName(), "end");
    }
}

}  // namespace
