#include <binder/IServiceManager.h>
#include <host/Host.h>

#include <utility>

namespace android {

sp<IBinder> IServiceManager::getService(const String16& name) {
    const std::lock_guard lock(mutex);
    const auto found = services.find(name);
    return found != services.end() ? found->second : nullptr;
}

// The previous service goes without the lock, because its destructor may use the service manager.
void IServiceManager::addService(const String16& name, sp<IBinder> service) {
    const std::lock_guard lock(mutex);
    std::swap(services[name], service);
}

// It is never destroyed, because threads may look services up until the very end of the process.
sp<IServiceManager> defaultServiceManager() {
    static const auto& manager = *new auto(sp<IServiceManager>::make());
    return manager;
}

}  // namespace android

namespace host {

void removeService(const android::String16& name) {
    android::defaultServiceManager()->addService(name, nullptr);
}

}  // namespace host
