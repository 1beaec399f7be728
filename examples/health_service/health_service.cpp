// The smallest service: takes the rules that the device is configured with, and gives them an observation.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "rulesengine/Event.h"
#include "rulesengine/FiniteStateMachine.h"
#include "vig/VIGManager.h"

using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::VIG::VIGConfig;
using Brenta::OS::VIG::VIGManager;

// Rules know of an observation what it tells of itself by these operations. This one is made up.
class CameraMemory : public Event {
  public:
    CameraMemory() : Event(EventType::ProcessMemoryHeartBeat) {}

    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override {
        if (key == "vmRssKB") {
            return 300000;
        }
        if (key == "vmSwapKB") {
            return 24;
        }
        return std::nullopt;
    }

    std::string_view getStringAttr(std::string_view key) const override { return key == "processName" ? "camera" : ""; }

    std::vector<std::string_view> keys(ValueType kind) const override {
        switch (kind) {
            case ValueType::Int64:
                return {"vmRssKB", "vmSwapKB"};
            case ValueType::String:
                return {"processName"};
            default:
                return {};
        }
    }
};

int main() {
    std::mutex mutex;
    std::condition_variable delivery;
    std::optional<std::vector<std::unique_ptr<VIGConfig>>> configs;  // guarded by mutex

    // Declared after what its callback uses, so that it is gone before. It calls on threads of its own, first with the
    // rules that are there, and again whenever they change.
    VIGManager manager;
    manager.registerCallback([&](std::vector<std::unique_ptr<VIGConfig>>&& delivered) {
        const std::lock_guard lock(mutex);
        configs = std::move(delivered);
        for (const auto& config : *configs) {
            config->getConfigPayload()->getFiniteStateMachine()->start();
        }
        delivery.notify_one();
    });

    std::unique_lock lock(mutex);
    // The manager looks for the device configuration for about 31 seconds.
    if (!delivery.wait_for(lock, std::chrono::seconds(32), [&] { return configs.has_value(); })) {
        std::cout << "There is no device configuration.\n";
        return 1;
    }
    std::cout << "configurations received: " << configs->size() << '\n';

    // A service does this with every observation, on any thread that has the lock.
    const CameraMemory observation;
    for (const auto& config : *configs) {
        config->getConfigPayload()->getFiniteStateMachine()->onEvent(observation);
    }
    return 0;
}
