#include "vig/VIGManager.h"

#include <deviceconfig/DeviceConfig.h>

#include <chrono>
#include <unordered_map>
#include <utility>

#include "vig/DeliveryGate.h"
#include "vig/EventTypeNames.h"
#include "vig/Log.h"
#include "vig/ResponseListener.h"
#include "vig/WatcherSleep.h"
#include "vig/actions/LogZramHeartBeatActionFunctionFactory.h"
#include "vig/actions/PseudoRandomDoublePureFunctionImpl.h"
#include "vig/actions/TestActionFunctionFactory.h"
#include "vig/actions/VIGTriggerVeloraCpuFuncActionFactoryImpl.h"
#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG {

using com::korvel::deviceconfig::DeviceConfig;
using com::korvel::deviceconfig::Properties;

namespace {

const std::string kNamespace = "korvel_vig";
const std::string kResponseKey = "vig_response";
constexpr const char* kDefaultResponse = "\n    { \"configs\": [] }\n  ";

constexpr std::int32_t kLongestDelay = 31;  // seconds; the watcher gives up rather than sleep longer
constexpr std::chrono::seconds kSettleTimeout{2};

}  // namespace

VIGManager::VIGManager()
    : deviceConfig(std::make_unique<DeviceConfig>()),
      testActionFunctionFactory(std::make_shared<TestActionFunctionFactory>()),
      logZramHeartBeatActionFunctionFactory(std::make_shared<LogZramHeartBeatActionFunctionFactory>()),
      triggerVeloraFuncActionFactory(std::make_shared<VIGTriggerVeloraFuncActionFactoryImpl>()),
      triggerVeloraCpuFuncActionFactory(std::make_shared<VIGTriggerVeloraCpuFuncActionFactoryImpl>()),
      gate(std::make_shared<DeliveryGate>()) {}

VIGManager::~VIGManager() {
    stop();
}

std::string VIGManager::getConfig() const {
    return deviceConfig->getProperties(kNamespace, {kResponseKey}).getString(kResponseKey, kDefaultResponse);
}

std::vector<std::unique_ptr<VIGConfig>> VIGManager::parseResponse(const std::string& response) const {
    auto result = VIGResponseParser().parseFromString(response, createParserConfig());
    if (result.error != VIGParseError::Ok) {
        return {};
    }
    return std::move(*result.value);
}

VIGParserConfig VIGManager::createParserConfig() const {
    std::unordered_map<std::string, RulesEngine::EventType> eventTypes;
    for (const auto& [eventType, name] : kEventTypeNames.pairs) {
        eventTypes.emplace(name, eventType);
    }
    return VIGParserConfig(std::move(eventTypes),
                           {
                               {"Test", testActionFunctionFactory},
                               {"LogZramHeartBeat", logZramHeartBeatActionFunctionFactory},
                               {"TriggerVelora", triggerVeloraFuncActionFactory},
                               {"TriggerVeloraCpu", triggerVeloraCpuFuncActionFactory},
                           },
                           {}, {{"PseudoRandomDouble", PseudoRandomDoublePureFunctionImpl::get()}}, {}, {});
}

void VIGManager::registerCallback(Callback newCallback) {
    // If the thread cannot be created, the error passes through here and the registration is taken back, unless
    // another thread has put its own in its place.
    struct Rollback {
        VIGManager& manager;
        std::uint64_t number = 0;
        bool needed = true;
        ~Rollback() {
            std::unique_lock lock(manager.mutex);
            if (needed && manager.registration == number) {
                manager.endRegistration(lock);
            }
        }
    } rollback{*this};
    {
        std::unique_lock lock(mutex);
        registered = true;
        deregistered = false;
        rollback.number = registration + 1;
        replaceRegistration(lock, std::move(newCallback));
    }
    configureDeviceConfigService();
    rollback.needed = false;
}

void VIGManager::deregisterCallback() {
    std::unique_lock lock(mutex);
    endRegistration(lock);
    // The watcher may be just registering a listener, which it removes again itself. On that very thread, or
    // with a service that does not answer, waiting for it would not end.
    if (subscriber != std::this_thread::get_id()) {
        subscriptionSettled.wait_for(lock, kSettleTimeout, [this] { return subscriber == std::thread::id(); });
    }
}

void VIGManager::endRegistration(std::unique_lock<std::mutex>& lock) {
    deregistered = registered;
    replaceRegistration(lock, nullptr);
}

void VIGManager::replaceRegistration(std::unique_lock<std::mutex>& lock, Callback newCallback) {
    callback = std::move(newCallback);
    ++registration;
    // Whoever adds or removes a listener at this moment sees the new registration when that is done.
    if (subscriber == std::thread::id()) {
        unsubscribe(lock);
    }
}

void VIGManager::stop() {
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    // A watcher that still polls may yet register a listener, so it goes first.
    if (deviceConfigThread.joinable()) {
        deviceConfigThread.join();
    }
    {
        std::unique_lock lock(mutex);
        unsubscribe(lock);
    }
    gate->close();
}

void VIGManager::configureDeviceConfigService() {
    const std::lock_guard lock(mutex);
    // A registration may have been ended before its thread came here.
    if (stopping || deregistered) {
        return;
    }
    if (!watching) {
        // Deciding to end is the last thing that a watcher does, so this does not wait.
        if (deviceConfigThread.joinable()) {
            deviceConfigThread.join();
        }
        deviceConfigThread = std::thread(&VIGManager::watch, this);
        watching = true;
    }
    watchRequest = registration;
}

void VIGManager::watch() {
    while (const std::optional<std::uint64_t> served = takeWatchRequest()) {
        pollFor(*served);
    }
}

// Empty if the watcher is to end: from then on it touches nothing of the manager.
std::optional<std::uint64_t> VIGManager::takeWatchRequest() {
    const std::lock_guard lock(mutex);
    if (!watchRequest) {
        watching = false;
    }
    return std::exchange(watchRequest, std::nullopt);
}

bool VIGManager::isWatchRequested() const {
    const std::lock_guard lock(mutex);
    return watchRequest.has_value();
}

bool VIGManager::isSubscribed() const {
    const std::lock_guard lock(mutex);
    return deviceConfigAvailable && responseListener != nullptr;
}

void VIGManager::pollFor(std::uint64_t served) {
    if (isSubscribed()) {
        return;
    }
    std::int32_t delay = 1;
    do {
        if (deviceConfig->isDeviceConfigAvailable()) {
            goLive(served);
            return;
        }
        sleepBetweenChecks(std::chrono::seconds(delay));
        delay *= 2;
        VIG_LOG_ERROR("ViG device config is not available yet.");
    } while (delay <= kLongestDelay && !isWatchRequested());
}

void VIGManager::goLive(std::uint64_t served) {
    {
        const DeliveryGate::Passage passage(*gate);
        if (passage && isAwaited(served)) {
            deliver(served, getConfig());
        }
    }
    if (subscribe(served)) {
        deviceConfigAvailable = true;
        VIG_LOG_ERROR("ViG device config is available now.");
    }
}

bool VIGManager::isAwaited(std::uint64_t served) const {
    const std::lock_guard lock(mutex);
    return registration == served && callback;
}

// The callback is copied, because a call under the mutex would keep it from using the manager.
void VIGManager::deliver(std::uint64_t served, const std::string& response) {
    auto configs = parseResponse(response);
    Callback receiver;
    {
        const std::lock_guard lock(mutex);
        if (registration == served) {
            receiver = callback;
        }
    }
    if (receiver) {
        receiver(std::move(configs));
    }
}

// Whether the registration still held, so that its listener is in place.
bool VIGManager::subscribe(std::uint64_t served) {
    std::unique_lock lock(mutex);
    subscriptionSettled.wait(lock, [this] { return subscriber == std::thread::id(); });
    if (registration != served) {
        return false;
    }
    responseListener = std::make_shared<ResponseListener>([this, served, gate = gate](const Properties& properties) {
        VIG_LOG_ERROR("ViG response is updated in QDC!");
        const DeliveryGate::Passage passage(*gate);
        if (passage && isAwaited(served)) {
            deliver(served, properties.getString(kResponseKey, kDefaultResponse));
        }
    });
    callService(lock, [this, listener = responseListener] {
        deviceConfig->addOnPropertiesChangeListener(kNamespace, listener);
    });
    if (registration != served) {
        unsubscribe(lock);
        return false;
    }
    return true;
}

void VIGManager::unsubscribe(std::unique_lock<std::mutex>& lock) {
    if (responseListener == nullptr) {
        return;
    }
    callService(lock, [this, listener = std::move(responseListener)] {
        deviceConfig->removeOnPropertiesChangeListener(listener);
    });
}

// Without the mutex: the service may wait for a notification whose handler needs it.
void VIGManager::callService(std::unique_lock<std::mutex>& lock, const std::function<void()>& call) {
    subscriber = std::this_thread::get_id();
    lock.unlock();
    call();
    lock.lock();
    subscriber = std::thread::id();
    subscriptionSettled.notify_all();
}

}  // namespace Brenta::OS::VIG
