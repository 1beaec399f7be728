#include <binder/IServiceManager.h>
#include <host/Services.h>

#include <map>
#include <mutex>

namespace android {

namespace {

class ServiceManager final : public IServiceManager {
  public:
    sp<IBinder> getService(const String16& name) override {
        const std::lock_guard lock(mutex);
        const auto found = services.find(name);
        return found != services.end() ? found->second : nullptr;
    }

    status_t addService(const String16& name, const sp<IBinder>& service) override {
        if (service == nullptr) {
            return BAD_VALUE;
        }
        exchange(name, service);
        return NO_ERROR;
    }

    bool removeService(const String16& name) { return exchange(name, nullptr) != nullptr; }

  private:
    // Hands the previous service to the caller, because its destructor may use the service manager.
    sp<IBinder> exchange(const String16& name, sp<IBinder> service) {
        const std::lock_guard lock(mutex);
        std::swap(services[name], service);
        return service;
    }

    std::mutex mutex;
    std::map<String16, sp<IBinder>> services;  // guarded by mutex; null once removed
};

// Never destroyed, because threads may look services up until the very end of the process.
ServiceManager& serviceManager() {
    static const sp<ServiceManager>& manager = *new sp<ServiceManager>(new ServiceManager);
    return *manager;
}

}  // namespace

sp<IServiceManager> defaultServiceManager() {
    return &serviceManager();
}

}  // namespace android

namespace host {

bool removeService(const android::String16& name) {
    return android::serviceManager().removeService(name);
}

}  // namespace host
