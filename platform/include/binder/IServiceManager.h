#pragma once

#include <binder/IBinder.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/String16.h>
#include <utils/StrongPointer.h>

namespace android {

// The directory of services by instance name, such as "vendor.orlan.velora.ITrigger/default". May be used from
// any thread.
class IServiceManager : public virtual RefBase {
  public:
    // Null if no such service is registered.
    virtual sp<IBinder> getService(const String16& name) = 0;

    // Registers the service, or puts it in the place of the one that has the name. BAD_VALUE if it is null.
    virtual status_t addService(const String16& name, const sp<IBinder>& service) = 0;
};

// The service manager of this process; never null.
sp<IServiceManager> defaultServiceManager();

// Looks a service up by name. NO_ERROR with the service in `*service`, or NAME_NOT_FOUND with null there if none is
// registered or if it has another interface than INTERFACE.
template <typename INTERFACE>
status_t getService(const String16& name, sp<INTERFACE>* service) {
    *service = INTERFACE::asInterface(defaultServiceManager()->getService(name));
    return *service != nullptr ? NO_ERROR : NAME_NOT_FOUND;
}

}  // namespace android
