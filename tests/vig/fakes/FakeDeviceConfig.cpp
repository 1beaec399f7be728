#include "tests/vig/fakes/FakeDeviceConfig.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "vig/WatcherSleep.h"

using fakes::FakeDeviceConfig;

// Definitions in an executable take precedence over those of the shared platform library.
namespace com::korvel::deviceconfig {

class DeviceConfig::Impl {};

DeviceConfig::DeviceConfig() = default;
DeviceConfig::~DeviceConfig() = default;

bool DeviceConfig::isDeviceConfigAvailable() {
    FakeDeviceConfig& config = *FakeDeviceConfig::current;
    std::unique_lock lock(config.mutex);
    const int count = ++config.checkCount;
    lock.unlock();
    return config.availability(count);
}

Properties DeviceConfig::getProperties(const std::string& ns, std::initializer_list<std::string> /*names*/) {
    EXPECT_EQ(ns, "korvel_vig");
    auto values = FakeDeviceConfig::current->properties();
    FakeDeviceConfig::current->afterReading();
    return values;
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& ns,
                                                 const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    EXPECT_EQ(ns, "korvel_vig");
    FakeDeviceConfig& config = *FakeDeviceConfig::current;
    config.beforeAdding(listener);
    {
        const std::lock_guard lock(config.mutex);
        config.registered.push_back(listener);
        config.most = std::max(config.most, config.registered.size());
    }
    config.onAdded(listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    FakeDeviceConfig& config = *FakeDeviceConfig::current;
    config.beforeRemoving(listener);
    const std::lock_guard lock(config.mutex);
    std::erase(config.registered, listener);
}

}  // namespace com::korvel::deviceconfig

namespace Brenta::OS::VIG {

void sleepBetweenChecks(std::unique_lock<std::mutex>& lock, std::condition_variable& woken, std::chrono::seconds delay,
                        const std::function<bool()>& isRequested) {
    FakeDeviceConfig& config = *FakeDeviceConfig::current;
    lock.unlock();
    config.sleep(static_cast<int>(delay.count()));
    lock.lock();
    if (config.asleep) {
        config.asleep->set_value();  // whoever then gets the lock finds the watcher waiting
        woken.wait(lock, isRequested);
    }
}

}  // namespace Brenta::OS::VIG
