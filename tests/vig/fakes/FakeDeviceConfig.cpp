#include "tests/vig/fakes/FakeDeviceConfig.h"

#include <algorithm>
#include <cassert>
#include <chrono>

#include "vig/WatcherSleep.h"

namespace fakes {

namespace {
FakeDeviceConfig* currentConfig = nullptr;
FakeSleep* currentSleep = nullptr;
}  // namespace

FakeDeviceConfig& FakeDeviceConfig::current() {
    assert(currentConfig != nullptr);
    return *currentConfig;
}

FakeDeviceConfig::FakeDeviceConfig() {
    currentConfig = this;
}

FakeDeviceConfig::~FakeDeviceConfig() {
    currentConfig = nullptr;
}

void FakeDeviceConfig::setAvailable(bool value) {
    const std::lock_guard lock(mutex);
    available = value;
}

void FakeDeviceConfig::setResponse(std::optional<std::string> value) {
    const std::lock_guard lock(mutex);
    response = std::move(value);
}

void FakeDeviceConfig::notify() {
    for (const Listener& listener : listeners()) {
        notify(listener);
    }
}

void FakeDeviceConfig::notify(const Listener& listener) {
    listener->onPropertiesChanged(properties("korvel_vig"));
}

std::vector<Listener> FakeDeviceConfig::listeners() const {
    const std::lock_guard lock(mutex);
    std::vector<Listener> found;
    for (const auto& [ns, listener] : registered) {
        found.push_back(listener);
    }
    return found;
}

std::size_t FakeDeviceConfig::mostListeners() const {
    const std::lock_guard lock(mutex);
    return most;
}

int FakeDeviceConfig::checks() const {
    const std::lock_guard lock(mutex);
    return checkCount;
}

std::vector<std::string> FakeDeviceConfig::namespaces() const {
    const std::lock_guard lock(mutex);
    std::vector<std::string> found;
    for (const auto& [ns, listener] : registered) {
        found.push_back(ns);
    }
    return found;
}

bool FakeDeviceConfig::check() {
    std::unique_lock lock(mutex);
    const int count = ++checkCount;
    const bool answer = available;
    lock.unlock();
    return availability ? availability(count) : answer;
}

com::korvel::deviceconfig::Properties FakeDeviceConfig::properties(const std::string& ns) {
    const std::lock_guard lock(mutex);
    std::map<std::string, std::string> values;
    if (response) {
        values.emplace("vig_response", *response);
    }
    return {ns, std::move(values)};
}

void FakeDeviceConfig::add(const std::string& ns, const Listener& listener) {
    if (onAdd) {
        onAdd(listener);
    }
    {
        const std::lock_guard lock(mutex);
        registered.emplace_back(ns, listener);
        most = std::max(most, registered.size());
    }
    if (onAdded) {
        onAdded(listener);
    }
}

void FakeDeviceConfig::remove(const Listener& listener) {
    if (onRemove) {
        onRemove(listener);
    }
    const std::lock_guard lock(mutex);
    std::erase_if(registered, [&](const auto& entry) { return entry.second == listener; });
}

FakeSleep& FakeSleep::current() {
    assert(currentSleep != nullptr);
    return *currentSleep;
}

FakeSleep::FakeSleep() {
    currentSleep = this;
}

FakeSleep::~FakeSleep() {
    currentSleep = nullptr;
}

std::vector<int> FakeSleep::delays() const {
    const std::lock_guard lock(mutex);
    return slept;
}

void FakeSleep::sleep(int seconds) {
    std::unique_lock lock(mutex);
    slept.push_back(seconds);
    const int count = static_cast<int>(slept.size());
    lock.unlock();
    if (during) {
        during(count);
    }
}

}  // namespace fakes

// Definitions in an executable take precedence over those of the shared platform library.
namespace com::korvel::deviceconfig {

class DeviceConfig::Impl {};

DeviceConfig::DeviceConfig() = default;
DeviceConfig::~DeviceConfig() = default;

bool DeviceConfig::isDeviceConfigAvailable() {
    return fakes::FakeDeviceConfig::current().check();
}

Properties DeviceConfig::getProperties(const std::string& ns, std::initializer_list<std::string> /*names*/) {
    auto& config = fakes::FakeDeviceConfig::current();
    if (config.onGetProperties) {
        config.onGetProperties();
    }
    return config.properties(ns);
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& ns,
                                                 const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    fakes::FakeDeviceConfig::current().add(ns, listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    fakes::FakeDeviceConfig::current().remove(listener);
}

}  // namespace com::korvel::deviceconfig

namespace Brenta::OS::VIG {

void sleepBetweenChecks(std::chrono::seconds delay) {
    fakes::FakeSleep::current().sleep(static_cast<int>(delay.count()));
}

}  // namespace Brenta::OS::VIG
