#pragma once

#include <binder/IBinder.h>
#include <binder/Status.h>
#include <utils/StrongPointer.h>
#include <vendor/orlan/velora/TriggerContext.h>

namespace vendor::orlan::velora {

// The trigger service, which collects diagnostics when it is asked to. It is registered with the service manager
// as "vendor.orlan.velora.ITrigger/default".
class ITrigger : public android::IBinder {
  public:
    // Returns the interface of a trigger service, or null for null.
    static android::sp<ITrigger> asInterface(const android::sp<android::IBinder>& service) {
        return std::static_pointer_cast<ITrigger>(service);
    }

    // Asks for one collection. It is called on the thread of whoever triggers, which waits for it; several threads may
    // call at once.
    virtual android::binder::Status trigger(const TriggerContext& context) = 0;
};

}  // namespace vendor::orlan::velora
