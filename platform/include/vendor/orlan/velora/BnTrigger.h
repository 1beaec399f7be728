#pragma once

#include <vendor/orlan/velora/ITrigger.h>

namespace vendor::orlan::velora {

// It is the base of an implementation of the trigger service: override trigger() and register the object with the
// service manager.
class BnTrigger : public ITrigger {};

}  // namespace vendor::orlan::velora
