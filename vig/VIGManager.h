#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "os/Export.h"
#include "vig/parsers/VIGConfig.h"
#include "vig/parsers/VIGParserConfig.h"

namespace com::korvel::deviceconfig {
class DeviceConfig;
}

namespace Brenta::OS::VIG {

class DeliveryGate;
class LogZramHeartBeatActionFunctionFactory;
class ResponseListener;
class TestActionFunctionFactory;
class VIGTriggerVeloraCpuFuncActionFactoryImpl;
class VIGTriggerVeloraFuncActionFactoryImpl;

// Delivers the configurations of the device to a client: once when the device-configuration service is found,
// and again whenever the rule document changes. This is the one object that a client creates.
//
// A delivery hands over the ownership of the configurations, and of the machines in them, which outlive the
// manager. A document that is absent or in any way invalid reads as an empty list; the log says why.
// Deliveries run on the manager's watcher thread (the first) and on the device-configuration library's own
// thread (the others), never on the client's, and never two at a time. Each belongs to one registration: the
// callback of a later one never sees a document that was read for an earlier one.
//
// All operations may be called from any thread, and all but the destructor from within the callback.
// Nothing throws, but for the std::system_error of a thread that cannot be created.
// REQUIRES: the C++ locale of the process has the decimal point ".", since the JSON library reads numbers in it.
// The order of the virtual operations and of the members is part of the binary interface.
class VIG_EXPORT VIGManager {
  public:
    // Receives the configurations of one delivery, which it owns from then on: on a thread of the manager, never two at
    // a time. An empty one has nothing delivered.
    using Callback = std::function<void(std::vector<std::unique_ptr<VIGConfig>>&&)>;

    // Starts no thread and calls no service.
    VIGManager();
    VIGManager(const VIGManager&) = delete;
    VIGManager& operator=(const VIGManager&) = delete;

    // When it returns, no thread runs any code of the manager and no listener is left. Waits for a watcher that
    // still polls, until about 31 seconds after the latest registration, and for deliveries under way; until then the
    // callback may be called.
    // REQUIRES: not called from within the callback (asserted in debug builds).
    virtual ~VIGManager();

    // Returns the text of the rule document, read anew from the device configuration, or that of an empty document if
    // there is none.
    virtual std::string getConfig() const;

    // Parses a document with the names that the library knows. If it is invalid, logs why and returns an empty list.
    virtual std::vector<std::unique_ptr<VIGConfig>> parseResponse(const std::string& response) const;

    // Starts the watcher thread, or asks the one that still polls to begin again. Part of registerCallback. Does
    // nothing once a registration has been ended, until the next one.
    virtual void configureDeviceConfigService();

    // Makes `newCallback` the receiver of all deliveries and looks for the service, now and again for about 31 seconds;
    // a service that appears later is not found. If the service is there, the first delivery follows at once.
    // An earlier registration ends as with deregisterCallback, but without waiting for the service.
    // If the thread cannot be created, there is no registration afterwards.
    // REQUIRES: the copy constructors and destructors of what a callback owns do not use the manager, since callbacks
    // are copied, replaced and cleared under its mutex; the caller holds no lock that the callback takes, since the
    // service may wait for a notification under way; and it is not called at the end of a thread that ran the callback,
    // by the destructor of a thread_local.
    void registerCallback(Callback newCallback);

    // Ends the registration. No delivery for it begins after the return, but one under way may still call the copy of
    // the callback that it holds. No listener stays registered: for one that another thread is just adding or removing
    // the call waits, two seconds at most, and not at all within a callback; it is removed as soon as the service is
    // done with it.
    void deregisterCallback();

  protected:
    // Returns the registry of the names that the library knows.
    VIGParserConfig createParserConfig() const;

    // Does what the destructor does first. A derived class that overrides an operation calls it in its own
    // destructor, because the manager's threads may call the override until then.
    void stop();

  private:
    enum class RegistrationState : std::uint8_t { NeverRegistered, Registered, Deregistered };

    void watch();
    std::optional<std::uint64_t> takeWatchRequest();
    bool isSubscribed() const;
    void pollFor(std::uint64_t registration);
    bool sleepUnlessRequested(std::int32_t delay);
    void goLive(std::uint64_t registration);

    bool isAwaited(std::uint64_t registration) const;
    void deliver(std::uint64_t registration, const std::string& response);

    void endRegistration(std::unique_lock<std::mutex>& lock);
    std::uint64_t replaceRegistration(std::unique_lock<std::mutex>& lock, Callback newCallback,
                                      RegistrationState newState);
    bool subscribe(std::uint64_t registration);
    void unsubscribe(std::unique_lock<std::mutex>& lock);
    template <typename Call>
    void callService(std::unique_lock<std::mutex>& lock, const Call& call);

    Callback callback;  // guarded by mutex
    std::unique_ptr<com::korvel::deviceconfig::DeviceConfig> deviceConfig;
    std::shared_ptr<ResponseListener> responseListener;  // guarded by mutex
    std::atomic<bool> deviceConfigAvailable{false};
    mutable std::mutex mutex;
    std::thread deviceConfigThread;  // guarded by mutex until `stop` joins it
    std::shared_ptr<TestActionFunctionFactory> testActionFunctionFactory;
    std::shared_ptr<LogZramHeartBeatActionFunctionFactory> logZramHeartBeatActionFunctionFactory;
    std::shared_ptr<VIGTriggerVeloraFuncActionFactoryImpl> triggerVeloraFuncActionFactory;
    std::shared_ptr<VIGTriggerVeloraCpuFuncActionFactoryImpl> triggerVeloraCpuFuncActionFactory;

    RegistrationState registrationState{RegistrationState::NeverRegistered};  // guarded by mutex
    bool watching{false};               // guarded by mutex; the watcher has not decided to end
    bool stopping{false};               // guarded by mutex; nothing new begins
    std::thread::id subscribingThread;  // guarded by mutex; adds or removes a listener at this moment, if any
    std::condition_variable subscriptionSettled;
    std::optional<std::uint64_t> watchRequest;  // guarded by mutex; the registration to look for next
    std::condition_variable watchRequested;
    std::shared_ptr<DeliveryGate> gate;  // changes its registration under mutex only
};

}  // namespace Brenta::OS::VIG
