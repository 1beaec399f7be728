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

using Brenta::OS::VIG::VIGManager;

std::string document() {
    return support::documentOf({support::transition("start", "end", "Test", "[]", R"([{"name":"LogZramHeartBeat"}])")});
}

bool moves(const std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>& configs) {
    auto& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    machine.onEvent(support::TestEvent({}));
    return machine.getCurrentState()->getName() == "end";
}

// Built before main, as a client may that has its machines in objects of static storage.
const VIGManager earlyManager;
const auto earlyConfigs = earlyManager.parseResponse(document());

TEST(BeforeMain, MachinesCanBeBuilt) {
    const support::LogCapture log;
    EXPECT_TRUE(moves(earlyConfigs));
    EXPECT_EQ(log.messages().size(), 1U);
}

// A service may load the library before it forks the process that uses it.
TEST(Fork, ChildUsesWhatTheParentHasLoadedAndTheParentGoesOn) {
    const support::TemporaryFolder folder;
    host::bindProperty("korvel_vig", "vig_response", folder.write("rules.json", document()));
    const support::LogCapture log;
    support::Receiver receiver;
    auto manager = std::make_unique<VIGManager>();
    const auto liveAndExit = [&] {
        {
            VIGManager own;
            own.registerCallback(receiver.callback());
            receiver.waitFor(1);
        }
        std::_Exit(moves(earlyManager.parseResponse(document())) && receiver.sizes().size() == 1 ? 0 : 1);
    };
    EXPECT_EXIT(liveAndExit(), testing::ExitedWithCode(0), "");

    // A child that destroys the manager of its parent, whose threads it lacks, ends, and the parent's lives on.
    manager->registerCallback(receiver.callback());
    ASSERT_TRUE(log.sees("ViG device config is available now."));
    const auto destroyAndExit = [&] {
        manager.reset();
        std::_Exit(0);
    };
    EXPECT_EXIT(destroyAndExit(), testing::ExitedWithCode(0), "");
    folder.write("rules.json", support::document({}));
    receiver.waitFor(2);
    EXPECT_EQ(receiver.sizes().back(), 0U);
}

}  // namespace
