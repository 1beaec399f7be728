// The smallest client: a service that watches its own memory and runs the rules of the device on it.
//
// On a device it runs as it is. On a host, point VIG_DEVICE_CONFIG at a folder with a rule document in
// korvel_vig/vig_response.

#include <unistd.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "rulesengine/Event.h"
#include "rulesengine/FiniteStateMachine.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::VIG::VIGConfig;
using Brenta::OS::VIG::VIGManager;

// Rules can know of an observation what its getters report.
class ProcessMemory : public Event {
  public:
    ProcessMemory(std::string process, std::int64_t rssKB)
        : Event(EventType::ProcessMemoryHeartBeat), processName(std::move(process)), vmRssKB(rssKB) {}

    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override {
        if (key == "vmRssKB") {
            return vmRssKB;
        }
        return key == "vmSwapKB" ? std::optional<std::int64_t>(0) : std::nullopt;
    }

    std::string_view getStringAttr(std::string_view key) const override {
        return key == "processName" ? std::string_view(processName) : std::string_view();
    }

    std::vector<std::string_view> keys(ValueType valueType) const override {
        switch (valueType) {
            case ValueType::Int64:
                return {"vmRssKB", "vmSwapKB"};
            case ValueType::String:
                return {"processName"};
            default:
                return {};
        }
    }

  private:
    const std::string processName;
    const std::int64_t vmRssKB;
};

std::int64_t readResidentKB() {
    std::int64_t size = 0;
    std::int64_t residentPages = 0;
    std::ifstream("/proc/self/statm") >> size >> residentPages;
    return residentPages * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

int main() {
    std::mutex mutex;
    std::vector<std::unique_ptr<VIGConfig>> configs;  // guarded by mutex

    // Declared after what its callback uses, so that it is gone before.
    VIGManager manager;
    manager.registerCallback([&](std::vector<std::unique_ptr<VIGConfig>>&& delivered) {
        const std::lock_guard lock(mutex);
        configs = std::move(delivered);
        for (const auto& config : configs) {
            config->getConfigPayload()->getFiniteStateMachine()->start();
        }
    });

    for (int heartBeat = 0; heartBeat < 40; ++heartBeat) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const ProcessMemory event("health_service", readResidentKB());
        const std::lock_guard lock(mutex);
        for (const auto& config : configs) {
            config->getConfigPayload()->getFiniteStateMachine()->onEvent(event);
        }
    }
    return 0;
}
