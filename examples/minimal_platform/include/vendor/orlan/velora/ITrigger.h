#pragma once

#include <vendor/orlan/velora/TriggerContext.h>

namespace android::binder {

struct Status {};

}  // namespace android::binder

namespace vendor::orlan::velora {

class ITrigger {
  public:
    virtual android::binder::Status trigger(const TriggerContext& context) = 0;
    virtual ~ITrigger() = default;
};

}  // namespace vendor::orlan::velora
