#pragma once

#include <deviceconfig/DeviceConfig.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fakes {

using Listener = std::shared_ptr<com::korvel::deviceconfig::OnPropertiesChangeListener>;

// The device configuration that all clients of this executable see, in place of the platform's. Hooks run
// without a lock held, on the thread that calls the client, before the call does its work.
class FakeDeviceConfig {
  public:
    // The one of the current test.
    static FakeDeviceConfig& current();

    FakeDeviceConfig();
    ~FakeDeviceConfig();

    void setAvailable(bool value);
    void setResponse(std::optional<std::string> value);

    // Calls every registered listener, on this thread, with the response as it is.
    void notify();

    // Calls one listener, registered or not: the library does not promise to stop at once.
    void notify(const Listener& listener);

    std::vector<Listener> listeners() const;
    std::size_t mostListeners() const;
    int checks() const;
    std::vector<std::string> namespaces() const;

    std::function<bool(int check)> availability;  // decides each check, counted from 1, if it is set
    std::function<void()> onGetProperties;
    std::function<void(const Listener&)> onAdd;
    std::function<void(const Listener&)> onAdded;
    std::function<void(const Listener&)> onRemove;

    // What the clients do.
    bool check();
    com::korvel::deviceconfig::Properties properties(const std::string& ns);
    void add(const std::string& ns, const Listener& listener);
    void remove(const Listener& listener);

  private:
    mutable std::mutex mutex;
    bool available = true;
    std::optional<std::string> response;
    std::vector<std::pair<std::string, Listener>> registered;
    std::size_t most = 0;
    int checkCount = 0;
};

// How long the manager's watcher has "slept", in seconds, and what happens meanwhile.
class FakeSleep {
  public:
    static FakeSleep& current();

    FakeSleep();
    ~FakeSleep();

    std::vector<int> delays() const;

    std::function<void(int sleep)> during;  // runs in each sleep, counted from 1

    void sleep(int seconds);

  private:
    mutable std::mutex mutex;
    std::vector<int> slept;
};

}  // namespace fakes
