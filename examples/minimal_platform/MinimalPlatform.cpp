#include "MinimalPlatform.h"

#include <android/log.h>
#include <binder/IServiceManager.h>
#include <deviceconfig/DeviceConfig.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

namespace {

using Listener = std::shared_ptr<com::korvel::deviceconfig::OnPropertiesChangeListener>;

std::mutex mutex;
std::function<void(std::string_view)> logReceiver;     // guarded by mutex
android::sp<vendor::orlan::velora::ITrigger> trigger;  // guarded by mutex
com::korvel::deviceconfig::Properties properties;      // guarded by mutex
std::vector<Listener> listeners;                       // guarded by mutex

}  // namespace

namespace minimal {

void setLogReceiver(std::function<void(std::string_view message)> receiver) {
    const std::lock_guard lock(mutex);
    logReceiver = std::move(receiver);
}

void setTriggerService(std::shared_ptr<vendor::orlan::velora::ITrigger> service) {
    const std::lock_guard lock(mutex);
    trigger = std::move(service);
}

void setResponse(const std::string& document) {
    std::unique_lock lock(mutex);
    properties.response = document;
    const auto told = listeners;
    lock.unlock();
    for (const Listener& listener : told) {
        listener->onPropertiesChanged({document});
    }
}

}  // namespace minimal

int __android_log_print(int /*priority*/, const char* /*tag*/, const char* format, ...) {
    char line[256];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    std::unique_lock lock(mutex);
    const auto receiver = logReceiver;
    lock.unlock();
    if (receiver) {
        receiver(line);
    }
    return length;
}

namespace android {

sp<void> findService(const String16& name) {
    const std::lock_guard lock(mutex);
    return name == String16("vendor.orlan.velora.ITrigger/default") ? trigger : nullptr;
}

}  // namespace android

namespace com::korvel::deviceconfig {

std::string Properties::getString(const std::string& name, const std::string& fallback) const {
    return name == "vig_response" ? response.value_or(fallback) : fallback;
}

bool DeviceConfig::isDeviceConfigAvailable() {
    return true;
}

Properties DeviceConfig::getProperties(const std::string& /*ns*/, std::initializer_list<std::string> /*names*/) {
    const std::lock_guard lock(mutex);
    return properties;
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& /*ns*/, const Listener& listener) {
    const std::lock_guard lock(mutex);
    listeners.push_back(listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const Listener& listener) {
    const std::lock_guard lock(mutex);
    std::erase(listeners, listener);
}

}  // namespace com::korvel::deviceconfig
