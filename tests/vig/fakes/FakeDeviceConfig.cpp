#include "tests/vig/fakes/FakeDeviceConfig.h"

#include <gtest/gtest.h>

#include "vig/WatcherSleep.h"

// Definitions in an executable take precedence over those of the shared platform library.
namespace com::korvel::deviceconfig {

class DeviceConfig::Impl {};

DeviceConfig::DeviceConfig() = default;
DeviceConfig::~DeviceConfig() = default;

bool DeviceConfig::isDeviceConfigAvailable() {
    return fakes::FakeDeviceConfig::current->check();
}

Properties DeviceConfig::getProperties(const std::string& ns, std::initializer_list<std::string> /*names*/) {
    EXPECT_EQ(ns, "korvel_vig");
    return fakes::FakeDeviceConfig::current->read();
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& ns,
                                                 const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    EXPECT_EQ(ns, "korvel_vig");
    fakes::FakeDeviceConfig::current->add(listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    fakes::FakeDeviceConfig::current->remove(listener);
}

}  // namespace com::korvel::deviceconfig

namespace Brenta::OS::VIG {

void sleepBetweenChecks(std::unique_lock<std::mutex>& lock, std::condition_variable& woken, std::chrono::seconds delay,
                        const std::function<bool()>& isRequested) {
    fakes::FakeDeviceConfig& config = *fakes::FakeDeviceConfig::current;
    lock.unlock();
    config.sleep(static_cast<int>(delay.count()));
    lock.lock();
    if (config.asleep) {
        config.asleep->set_value();  // whoever then gets the lock finds the watcher waiting
        woken.wait(lock, isRequested);
    }
}

}  // namespace Brenta::OS::VIG
