// A registration starts a watcher, a thread that asks for the service until it is there, makes the first delivery, adds
// a change listener and ends. All later deliveries come on threads of the device-configuration library. Meanwhile any
// thread may register anew, deregister or destroy the manager, the first two also from within a callback.
//
// So that nothing has to be stopped for that, each registration has a number, and what is done for it carries the
// number: a request to the watcher, a listener, a delivery. Whoever finds that there is a later number has been
// overtaken, drops what it was about to deliver and removes the listener that it has just added.
//
// The mutex is never held while the client or the service is called, because either may call back, or wait for a thread
// that needs it. Instead `subscribingThread` keeps the calls that add and remove listeners apart, and the gate the
// deliveries; whoever waits at the gate leaves it when its registration is over. Since the library may call a listener
// that it has removed, listeners share the gate with the manager, which closes it before it goes.

#include "vig/VIGManager.h"

#include <deviceconfig/DeviceConfig.h>

#include <chrono>
#include <unordered_map>
#include <utility>

#include "vig/DeliveryGate.h"
#include "vig/EventTypeNames.h"
#include "vig/ResponseListener.h"
#include "vig/ResponseProperty.h"
#include "vig/WatcherSleep.h"
#include "vig/actions/LogZramHeartBeatActionFunctionFactory.h"
#include "vig/actions/TestActionFunctionFactory.h"
#include "vig/actions/VIGTriggerVeloraCpuFuncActionFactoryImpl.h"
#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"
#include "vig/base/Log.h"
#include "vig/functions/DoubleFunctions.h"
#include "vig/parsers/VIGResponseParser.h"

namespace Brenta::OS::VIG {

using com::korvel::deviceconfig::DeviceConfig;
using com::korvel::deviceconfig::Properties;

namespace {

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
    std::unordered_map<std::string, VIGParserConfig::DoublePureFunction> doubleFunctions;
    for (const DoubleFunction& each : kDoubleFunctions) {
        doubleFunctions.emplace(each.name, each.get());
    }
    return VIGParserConfig(std::move(eventTypes),
                           {
                               {"Test", testActionFunctionFactory},
                               {"LogZramHeartBeat", logZramHeartBeatActionFunctionFactory},
                               {"TriggerVelora", triggerVeloraFuncActionFactory},
                               {"TriggerVeloraCpu", triggerVeloraCpuFuncActionFactory},
                           },
                           {}, std::move(doubleFunctions), {}, {});
}

void VIGManager::registerCallback(Callback newCallback) {
    std::uint64_t registration = 0;
    {
        std::unique_lock lock(mutex);
        registration = replaceRegistration(lock, std::move(newCallback), RegistrationState::Registered);
    }
    // If the thread cannot be created, the error passes through here and the registration is taken back, unless
    // another thread has put its own in its place.
    struct Rollback {
        VIGManager& manager;
        const std::uint64_t registration;
        bool needed = true;
        ~Rollback() {
            if (needed) {
                std::unique_lock lock(manager.mutex);
                if (manager.gate->latestRegistration() == registration) {
                    manager.endRegistration(lock);
                }
            }
        }
    } rollback{*this, registration};
    configureDeviceConfigService();
    rollback.needed = false;
}

void VIGManager::deregisterCallback() {
    std::unique_lock lock(mutex);
    endRegistration(lock);
    // Another thread may be just adding the listener, which it then removes again itself, or removing it. Waiting for
    // that would not end on that very thread, nor in a delivery, for whose end the service may wait, nor with a service
    // that does not answer.
    if (subscribingThread != std::this_thread::get_id() && !gate->isInside()) {
        subscriptionSettled.wait_for(lock, kSettleTimeout, [this] { return subscribingThread == std::thread::id(); });
    }
}

void VIGManager::endRegistration(std::unique_lock<std::mutex>& lock) {
    const bool wasEver = registrationState != RegistrationState::NeverRegistered;
    replaceRegistration(lock, nullptr, wasEver ? RegistrationState::Deregistered : RegistrationState::NeverRegistered);
}

// Returns the number of the registration that takes the place of the latest one.
std::uint64_t VIGManager::replaceRegistration(std::unique_lock<std::mutex>& lock, Callback newCallback,
                                              RegistrationState newState) {
    callback = std::move(newCallback);
    registrationState = newState;
    const std::uint64_t registration = gate->beginRegistration();
    // Whoever adds or removes a listener at this moment sees the new registration when that is done.
    if (subscribingThread == std::thread::id()) {
        unsubscribe(lock);
    }
    return registration;
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
    gate->close();
    std::unique_lock lock(mutex);
    unsubscribe(lock);
}

void VIGManager::configureDeviceConfigService() {
    std::thread ended;
    {
        const std::lock_guard lock(mutex);
        // A registration may have been ended before its thread came here.
        if (stopping || registrationState == RegistrationState::Deregistered) {
            return;
        }
        if (!watching) {
            ended = std::exchange(deviceConfigThread, std::thread(&VIGManager::watch, this));
            watching = true;
        }
        watchRequest = gate->latestRegistration();
        watchRequested.notify_all();
    }
    // Deciding to end is the last thing that a watcher does with the manager. What a callback has left to the end of
    // its thread may still use it, so the mutex is free.
    if (ended.joinable()) {
        ended.join();
    }
}

void VIGManager::watch() {
    while (const std::optional<std::uint64_t> registration = takeWatchRequest()) {
        pollFor(*registration);
    }
}

// Returns nothing if the watcher is to end: from then on it touches nothing of the manager.
std::optional<std::uint64_t> VIGManager::takeWatchRequest() {
    const std::lock_guard lock(mutex);
    if (!watchRequest) {
        watching = false;
    }
    return std::exchange(watchRequest, std::nullopt);
}

bool VIGManager::isSubscribed() const {
    const std::lock_guard lock(mutex);
    return deviceConfigAvailable && responseListener != nullptr;
}

void VIGManager::pollFor(std::uint64_t registration) {
    if (isSubscribed()) {
        return;
    }
    for (std::int32_t delay = 1; delay <= kLongestDelay; delay *= 2) {
        if (deviceConfig->isDeviceConfigAvailable()) {
            goLive(registration);
            return;
        }
        const bool isOvertaken = sleepUnlessRequested(delay);
        VIG_LOG_ERROR("ViG device config is not available yet.");
        if (isOvertaken) {
            return;
        }
    }
}

// Returns whether there is a request, which ends the sleep.
bool VIGManager::sleepUnlessRequested(std::int32_t delay) {
    std::unique_lock lock(mutex);
    const auto isRequested = [this] { return watchRequest.has_value(); };
    sleepBetweenChecks(lock, watchRequested, std::chrono::seconds(delay), isRequested);
    return isRequested();
}

void VIGManager::goLive(std::uint64_t registration) {
    if (isAwaited(registration)) {
        // The service is asked before the passage, so that nobody waits at the gate for its answer.
        const std::string response = getConfig();
        if (const DeliveryGate::Passage passage(*gate, registration); passage) {
            deliver(registration, response);
        }
    }
    if (subscribe(registration)) {
        deviceConfigAvailable = true;
        VIG_LOG_ERROR("%s", kListeningMessage);
    }
}

bool VIGManager::isAwaited(std::uint64_t registration) const {
    const std::lock_guard lock(mutex);
    return gate->latestRegistration() == registration && callback;
}

// The callback is copied, because a call under the mutex would keep it from using the manager.
void VIGManager::deliver(std::uint64_t registration, const std::string& response) {
    auto configs = parseResponse(response);
    Callback receiver;
    {
        const std::lock_guard lock(mutex);
        if (gate->latestRegistration() == registration) {
            receiver = callback;
        }
    }
    if (receiver) {
        receiver(std::move(configs));
    }
}

// Returns whether the registration still held, so that its listener is in place.
bool VIGManager::subscribe(std::uint64_t registration) {
    std::unique_lock lock(mutex);
    subscriptionSettled.wait(lock, [this] { return subscribingThread == std::thread::id(); });
    if (gate->latestRegistration() != registration) {
        return false;
    }
    responseListener =
        std::make_shared<ResponseListener>([this, registration, gate = gate](const Properties& properties) {
            VIG_LOG_ERROR("ViG response is updated in QDC!");
            const DeliveryGate::Passage passage(*gate, registration);
            if (passage && isAwaited(registration)) {
                deliver(registration, properties.getString(kResponseKey, kDefaultResponse));
            }
        });
    callService(lock, [this, listener = responseListener] {
        deviceConfig->addOnPropertiesChangeListener(kNamespace, listener);
    });
    if (gate->latestRegistration() != registration) {
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

// The call is made without the mutex: the service may wait for a notification whose handler needs it.
template <typename Call>
void VIGManager::callService(std::unique_lock<std::mutex>& lock, const Call& call) {
    subscribingThread = std::this_thread::get_id();
    lock.unlock();
    call();
    lock.lock();
    subscribingThread = std::thread::id();
    subscriptionSettled.notify_all();
}

}  // namespace Brenta::OS::VIG
