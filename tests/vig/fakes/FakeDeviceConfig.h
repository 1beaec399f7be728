#pragma once

#include <deviceconfig/DeviceConfig.h>

#include <algorithm>
#include <condition_variable>
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
    std::function<void(const Listener&)> onRemoved = [](const Listener&) {};
    bool onlyRequestsWake = false;
    std::promise<void> asleep;  // with onlyRequestsWake: a request from now on finds the watcher waiting

    void setResponse(std::optional<std::string> value) {
        const std::lock_guard lock(mutex);
        response = std::move(value);
    }

    com::korvel::deviceconfig::Properties properties() const {
        const std::lock_guard lock(mutex);
        using Values = std::map<std::string, std::string>;
        return com::korvel::deviceconfig::Properties(response ? Values{{"vig_response", *response}} : Values());
    }

    // Calls a listener, registered or not, on this thread: the library does not promise to stop at once.
    void notify(const Listener& listener) const { listener->onPropertiesChanged(properties()); }

    // Calls every registered listener.
    void notify() const {
        for (const Listener& listener : listeners()) {
            notify(listener);
        }
    }

    std::vector<Listener> listeners() const {
        const std::lock_guard lock(mutex);
        return registered;
    }

    // The most at any time.
    std::size_t mostListeners() const {
        const std::lock_guard lock(mutex);
        return most;
    }

    // Returns once listeners have been added that often.
    void waitForAdded(std::size_t count) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return added >= count; });
    }

    int checks() const {
        const std::lock_guard lock(mutex);
        return checkCount;
    }

    // In seconds.
    std::vector<int> sleeps() const {
        const std::lock_guard lock(mutex);
        return slept;
    }

    // What the clients do.

    bool check() {
        std::unique_lock lock(mutex);
        const int count = ++checkCount;
        lock.unlock();
        return availability(count);
    }

    void sleep(int seconds) {
        std::unique_lock lock(mutex);
        slept.push_back(seconds);
        const int count = static_cast<int>(slept.size());
        lock.unlock();
        duringSleep(count);
    }

    com::korvel::deviceconfig::Properties read() {
        auto values = properties();
        afterReading();
        return values;
    }

    void add(const Listener& listener) {
        beforeAdding(listener);
        {
            const std::lock_guard lock(mutex);
            registered.push_back(listener);
            most = std::max(most, registered.size());
        }
        onAdded(listener);
        const std::lock_guard lock(mutex);
        ++added;
        changed.notify_all();
    }

    void remove(const Listener& listener) {
        beforeRemoving(listener);
        {
            const std::lock_guard lock(mutex);
            std::erase(registered, listener);
        }
        onRemoved(listener);
    }

  private:
    mutable std::mutex mutex;
    std::optional<std::string> response;
    std::vector<Listener> registered;
    std::vector<int> slept;
    std::condition_variable changed;
    std::size_t added = 0;
    std::size_t most = 0;
    int checkCount = 0;
};

}  // namespace fakes
