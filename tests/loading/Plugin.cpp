#include <future>
#include <memory>
#include <utility>
#include <vector>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"

// The part of a service that uses the library: a manager's whole life, and an event for the machine that it delivers.
// Returns whether that moved.
extern "C" __attribute__((visibility("default"))) bool useLibrary() {
    std::promise<std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>> delivery;
    Brenta::OS::VIG::VIGManager manager;
    manager.registerCallback([&](auto&& configs) { delivery.set_value(std::move(configs)); });
    const auto configs = delivery.get_future().get();
    auto& machine = *configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine.start();
    machine.onEvent(support::TestEvent({}));
    return machine.getCurrentState()->getName() == "end";
}
