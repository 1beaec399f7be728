#pragma once

#include <deviceconfig/DeviceConfig.h>

#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fakes {

using Listener = std::shared_ptr<com::korvel::deviceconfig::OnPropertiesChangeListener>;

// The device configuration that all clients of this executable see in place of the platform's, and how their
// watcher sleeps. Hooks run without a lock held, on the thread that makes the call.
class FakeDeviceConfig {
  public:
    inline static FakeDeviceConfig* current = nullptr;  // the one of the running test

    FakeDeviceConfig() { current = this; }
    ~FakeDeviceConfig() { current = nullptr; }

    std::function<bool(int check)> availability = [](int) { return true; };  // decides each check, counted from 1
    std::function<void(int sleep)> duringSleep = [](int) {};                 // counted from 1
    std::function<void()> afterReading = [] {};
    std::function<void(const Listener&)> beforeAdding = [](const Listener&) {};
    std::function<void(const Listener&)> onAdded = [](const Listener&) {};
    std::function<void(const Listener&)> beforeRemoving = [](const Listener&) {};
    std::optional<std::promise<void>> asleep;  // if there is one, it is kept in a sleep that only a request ends

    void setResponse(std::optional<std::string> value) {
        const std::lock_guard lock(mutex);
        response = std::move(value);
    }

    com::korvel::deviceconfig::Properties properties() const {
        const auto value = valueOf(response);
        using Values = std::map<std::string, std::string>;
        return com::korvel::deviceconfig::Properties(value ? Values{{"vig_response", *value}} : Values());
    }

    // Calls a listener, registered or not, on this thread: the library does not promise to stop at once.
    void notify(const Listener& listener) const { listener->onPropertiesChanged(properties()); }

    // Calls every registered listener.
    void notify() const {
        for (const Listener& listener : listeners()) {
            notify(listener);
        }
    }

    std::vector<Listener> listeners() const { return valueOf(registered); }
    std::size_t mostListeners() const { return valueOf(most); }  // at any time
    int checks() const { return valueOf(checkCount); }
    std::vector<int> sleeps() const { return valueOf(slept); }  // in seconds

    void sleep(int seconds) {
        std::unique_lock lock(mutex);
        slept.push_back(seconds);
        const int count = static_cast<int>(slept.size());
        lock.unlock();
        duringSleep(count);
    }

  private:
    friend com::korvel::deviceconfig::DeviceConfig;

    template <typename Value>
    Value valueOf(const Value& member) const {
        const std::lock_guard lock(mutex);
        return member;
    }

    mutable std::mutex mutex;
    std::optional<std::string> response;
    std::vector<Listener> registered;
    std::vector<int> slept;
    std::size_t most = 0;
    int checkCount = 0;
};

}  // namespace fakes
