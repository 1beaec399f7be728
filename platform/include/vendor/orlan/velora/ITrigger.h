#pragma once

#include <binder/IBinder.h>
#include <binder/IInterface.h>
#include <binder/Status.h>
#include <utils/String16.h>
#include <utils/StrongPointer.h>
#include <vendor/orlan/velora/TriggerContext.h>

namespace vendor::orlan::velora {

// The trigger service, which collects diagnostics when it is asked to. It is registered with the service manager
// as "vendor.orlan.velora.ITrigger/default".
class ITrigger : public android::IInterface {
  public:
    // The name of the interface.
    static const android::String16 descriptor;

    // The interface of a service; null if the service is null or has another interface.
    static android::sp<ITrigger> asInterface(const android::sp<android::IBinder>& service);

    // Asks for one collection. Called on the thread of whoever triggers, which waits for it; several threads may
    // call at once.
    virtual android::binder::Status trigger(const TriggerContext& context) = 0;
};

}  // namespace vendor::orlan::velora
