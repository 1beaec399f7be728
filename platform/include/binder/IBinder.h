#pragma once

#include <binder/IInterface.h>
#include <utils/RefBase.h>
#include <utils/String16.h>
#include <utils/StrongPointer.h>

namespace android {

// A service as the service manager knows it: an object that says which interface it has.
class IBinder : public virtual RefBase {
  public:
    // The service itself if `descriptor` names its interface, else null. May be called from any thread.
    virtual sp<IInterface> queryLocalInterface(const String16& descriptor) = 0;
};

}  // namespace android
