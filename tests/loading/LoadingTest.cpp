#include <gtest/gtest.h>
#include <host/Host.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::VIGManager;
using testing::ExitedWithCode;

std::string document() {
    return support::documentOf({support::transition("start", "end", "Test", "[]", R"([{"name":"LogZramHeartBeat"}])")});
}

FiniteStateMachine& machineOf(const std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>& configs) {
    return *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
}

// Built before main, as a client may that has its machines in objects of static storage.
const VIGManager earlyManager;
const auto earlyConfigs = earlyManager.parseResponse(document());

std::string_view stateAfterAnEvent(FiniteStateMachine& machine) {
    machine.start();
    machine.onEvent(support::TestEvent({}));
    return machine.getCurrentState()->getName();
}

TEST(BeforeMain, MachinesCanBeBuilt) {
    const support::LogCapture log;
    EXPECT_EQ(stateAfterAnEvent(machineOf(earlyConfigs)), "end");
    EXPECT_EQ(log.messages().size(), 1U);
}

// As when the library is loaded before a process is forked that then uses it.
TEST(Fork, ChildUsesWhatTheParentHasLoadedAndTheParentGoesOn) {
    const support::TemporaryFolder folder;
    host::bindProperty("korvel_vig", "vig_response", folder.write("rules.json", document()));
    const support::LogCapture log;
    const auto live = [](VIGManager& manager, support::Receiver& receiver) {
        manager.registerCallback(receiver.callback());
        receiver.waitFor(1);
    };
    const auto liveAndExit = [&] {
        const auto inherited = earlyManager.parseResponse(document());
        const bool works = stateAfterAnEvent(machineOf(inherited)) == "end";
        support::Receiver receiver;
        {
            VIGManager manager;
            live(manager, receiver);
        }
        std::_Exit(works && receiver.sizes().size() == 1 ? 0 : 1);
    };
    EXPECT_EXIT(liveAndExit(), ExitedWithCode(0), "");

    // A child that destroys the manager of its parent, whose threads it lacks, ends, and the parent's lives on.
    support::Receiver receiver;
    auto manager = std::make_unique<VIGManager>();
    live(*manager, receiver);
    ASSERT_TRUE(log.sees("ViG device config is available now."));
    const auto destroyAndExit = [&] {
        manager.reset();
        std::_Exit(0);
    };
    EXPECT_EXIT(destroyAndExit(), ExitedWithCode(0), "");
    folder.write("rules.json", support::document({}));
    receiver.waitFor(2);
    EXPECT_EQ(receiver.sizes().back(), 0U);
}

}  // namespace
