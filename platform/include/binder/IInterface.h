#pragma once

#include <utils/RefBase.h>

namespace android {

// Base of the interfaces that a service offers and a client calls.
class IInterface : public virtual RefBase {};

}  // namespace android
