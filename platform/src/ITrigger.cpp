#include <vendor/orlan/velora/BnTrigger.h>
#include <vendor/orlan/velora/ITrigger.h>

namespace vendor::orlan::velora {

const android::String16 ITrigger::descriptor("vendor.orlan.velora.ITrigger");

android::sp<ITrigger> ITrigger::asInterface(const android::sp<android::IBinder>& service) {
    if (service == nullptr) {
        return nullptr;
    }
    // The descriptor vouches for the type, so the cast needs no type information at run time.
    return static_cast<ITrigger*>(service->queryLocalInterface(descriptor).get());
}

android::sp<android::IInterface> BnTrigger::queryLocalInterface(const android::String16& name) {
    return name == descriptor ? this : nullptr;
}

}  // namespace vendor::orlan::velora
