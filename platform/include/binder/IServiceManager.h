#pragma once

#include <binder/IBinder.h>
#include <utils/Errors.h>
#include <utils/String16.h>
#include <utils/StrongPointer.h>

#include <map>
#include <mutex>

namespace android {

// It has the services by instance name, such as "vendor.orlan.velora.ITrigger/default". It may be used from any thread.
class IServiceManager {
  public:
    // Returns null if no such service is registered.
    sp<IBinder> getService(const String16& name);

    // Registers the service, or puts it in the place of the one that has the name; a null one takes that out.
    void addService(const String16& name, sp<IBinder> service);

  private:
    std::mutex mutex;
    std::map<String16, sp<IBinder>> services;  // guarded by mutex
};

// Returns the service manager of this process; never null.
sp<IServiceManager> defaultServiceManager();

// Looks a service up by name. Returns NO_ERROR with the service in `*service`, or NAME_NOT_FOUND with null there if
// none is registered. REQUIRES: a service of that name has the interface INTERFACE.
template <typename INTERFACE>
status_t getService(const String16& name, sp<INTERFACE>* service) {
    *service = INTERFACE::asInterface(defaultServiceManager()->getService(name));
    return *service != nullptr ? NO_ERROR : NAME_NOT_FOUND;
}

}  // namespace android
