// A service with more than the smallest has: an event, a context, timers, an action and a function of its own. The page
// docs/linking.md explains it piece by piece. On a host, point VIG_DEVICE_CONFIG at a folder with rules.json in
// korvel_vig/vig_response.

#include <unistd.h>

#include <chrono>
#include <ctime>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Event.h"
#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/TimeoutEvent.h"
#include "vig/VIGManager.h"
#include "vig/actions/VIGActionFunctionFactory.h"
#include "vig/parsers/VIGResponseParser.h"

namespace {

using Brenta::OS::RulesEngine::EvaluationContext;
using Brenta::OS::RulesEngine::Event;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::TimeoutEvent;
using Brenta::OS::VIG::VIGActionFunction;
using Brenta::OS::VIG::VIGActionFunctionFactory;
using Brenta::OS::VIG::VIGActionParameter;
using Brenta::OS::VIG::VIGConfig;
using Brenta::OS::VIG::VIGManager;
using Brenta::OS::VIG::VIGParseError;
using Brenta::OS::VIG::VIGParserConfig;
using Brenta::OS::VIG::VIGResponseParser;

using Clock = std::chrono::steady_clock;

// The memory of the whole system, as rules see it.
class SystemMemory : public Event {
  public:
    explicit SystemMemory(std::int64_t availableKB)
        : Event(EventType::SystemMemoryHeartBeat), memAvailableKB(availableKB) {}

    std::optional<std::int64_t> getInt64Attr(std::string_view key) const override {
        return key == "memAvailableKB" ? std::optional(memAvailableKB) : std::nullopt;
    }

    std::vector<std::string_view> keys(ValueType valueType) const override {
        return valueType == ValueType::Int64 ? std::vector<std::string_view>{"memAvailableKB"}
                                             : std::vector<std::string_view>{};
    }

  private:
    const std::int64_t memAvailableKB;
};

// What the service knows about the device besides. The mutex that guards the machines guards it, too.
struct Device {
    std::string power = "mains";
};

// Lets the rules of a machine see it, each machine by a context of its own.
class DeviceContext : public EvaluationContext {
  public:
    explicit DeviceContext(std::shared_ptr<const Device> seen) : device(std::move(seen)) {}

    std::string_view getStringAttr(std::string_view key) const override {
        return key == "power" ? std::string_view(device->power) : std::string_view();
    }

  private:
    const std::shared_ptr<const Device> device;
};

// The timers of all machines. Rules arm them while an event is delivered, so that the mutex that guards the machines
// guards them, too.
class Timers {
  public:
    void arm(EvaluationContext& context, std::chrono::milliseconds delay) {
        due.emplace(Clock::now() + delay, ++latestId);
        context.timeoutIds.insert(latestId);
    }

    // Returns the identifiers of the timers that have run out, and forgets them.
    std::vector<std::int64_t> takeExpired() {
        std::vector<std::int64_t> expired;
        while (!due.empty() && due.begin()->first <= Clock::now()) {
            expired.push_back(due.extract(due.begin()).mapped());
        }
        return expired;
    }

  private:
    std::multimap<Clock::time_point, std::int64_t> due;
    std::int64_t latestId = 0;
};

// A timer ran out. It concerns the machine that armed it, and no other.
class TimerExpired : public TimeoutEvent {
  public:
    using TimeoutEvent::TimeoutEvent;

    bool matches(EventType eventType, const EvaluationContext& context) const override {
        return TimeoutEvent::matches(eventType, context) && context.timeoutIds.contains(timeoutId);
    }
};

// The action "ArmTimer" has one parameter, the milliseconds.
class ArmTimerFactory : public VIGActionFunctionFactory {
  public:
    explicit ArmTimerFactory(std::shared_ptr<Timers> armed) : timers(std::move(armed)) {}

    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override {
        const std::chrono::milliseconds delay(std::get<std::int32_t>(parameters.front()));
        if (delay.count() <= 0) {
            std::cerr << "ArmTimer needs a time of at least a millisecond\n";
            return std::nullopt;
        }
        return [timers = timers, delay](EvaluationContext& context, const Event&) { timers->arm(context, delay); };
    }

  private:
    const std::shared_ptr<Timers> timers;
};

// The action "Print" has one parameter, the line to print.
class PrintFactory : public VIGActionFunctionFactory {
  public:
    std::optional<VIGActionFunction> get(const std::vector<VIGActionParameter>& parameters) const override {
        return [line = std::get<std::string>(parameters.front())](EvaluationContext&, const Event&) {
            std::cout << line << std::endl;
        };
    }
};

std::int64_t secondsSinceBoot() {
    timespec time = {};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return time.tv_sec;
}

// Reads documents with the names of the library and those of this service.
class ServiceManager : public VIGManager {
  public:
    ServiceManager(std::shared_ptr<Timers> armed, std::shared_ptr<const Device> seen)
        : timers(std::move(armed)), device(std::move(seen)) {}

    // The manager's threads may be in parseResponse() until then.
    ~ServiceManager() override { stop(); }

    std::vector<std::unique_ptr<VIGConfig>> parseResponse(const std::string& response) const override {
        const VIGParserConfig library = createParserConfig();
        auto actions = library.getActionFunctionFactories();
        actions["ArmTimer(integer)"] = std::make_shared<ArmTimerFactory>(timers);
        actions["Print(string)"] = std::make_shared<PrintFactory>();
        auto integerFunctions = library.getInt64PureFunctions();
        integerFunctions["SecondsSinceBoot"] = secondsSinceBoot;
        const VIGParserConfig registry(library.getEventTypes(), std::move(actions), std::move(integerFunctions),
                                       library.getDoublePureFunctions(), library.getStringPureFunctions(), {},
                                       [device = device] { return std::make_unique<DeviceContext>(device); });
        auto parsed = VIGResponseParser().parseFromString(response, registry);
        if (parsed.error != VIGParseError::Ok) {
            return {};
        }
        return std::move(*parsed.value);
    }

  private:
    const std::shared_ptr<Timers> timers;
    const std::shared_ptr<const Device> device;
};

std::int64_t readAvailableKB() {
    return static_cast<std::int64_t>(sysconf(_SC_AVPHYS_PAGES)) * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

int main() {
    std::mutex mutex;
    std::vector<std::unique_ptr<VIGConfig>> configs;  // guarded by mutex
    const auto device = std::make_shared<Device>();   // guarded by mutex
    const auto timers = std::make_shared<Timers>();   // guarded by mutex

    const auto deliver = [&configs](const Event& event) {
        for (const auto& config : configs) {
            config->getConfigPayload()->getFiniteStateMachine()->onEvent(event);
        }
    };

    // Declared after what its callback uses, so that it is gone before.
    ServiceManager manager(timers, device);
    manager.registerCallback([&](std::vector<std::unique_ptr<VIGConfig>>&& delivered) {
        const std::lock_guard lock(mutex);
        configs = std::move(delivered);
        for (const auto& config : configs) {
            config->getConfigPayload()->getFiniteStateMachine()->start();
        }
    });

    for (int tick = 0; tick < 300; ++tick) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const std::lock_guard lock(mutex);
        for (const std::int64_t id : timers->takeExpired()) {
            deliver(TimerExpired(id));
            // A machine that no longer waits for the timer has not taken its identifier out.
            for (const auto& config : configs) {
                config->getConfigPayload()->getFiniteStateMachine()->getContext()->timeoutIds.erase(id);
            }
        }
        if (tick % 10 == 0) {
            deliver(SystemMemory(readAvailableKB()));
        }
    }
    return 0;
}
