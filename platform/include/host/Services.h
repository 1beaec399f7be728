#pragma once

#include <utils/String16.h>

namespace host {

// Takes a service out of the default service manager, as when its process dies. Who holds it keeps it. False if
// there is none of that name.
bool removeService(const android::String16& name);

}  // namespace host
