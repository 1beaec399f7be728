#pragma once

#include <utils/String16.h>
#include <utils/StrongPointer.h>

namespace android {

using status_t = int;

sp<void> findService(const String16& name);  // of this platform alone: the one service that there may be, or null

template <typename INTERFACE>
status_t getService(const String16& name, sp<INTERFACE>* service) {
    *service = std::static_pointer_cast<INTERFACE>(findService(name));
    return *service ? 0 : -2;
}

}  // namespace android
