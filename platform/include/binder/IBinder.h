#pragma once

namespace android {

// It is a service as the service manager knows it. On a host the trigger service is the only kind.
class IBinder {
  public:
    virtual ~IBinder() = default;
};

}  // namespace android
