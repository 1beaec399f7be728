#pragma once

#include <cstdint>

namespace android::binder {

// A status tells how a call on a service ended.
class Status {
  public:
    static Status ok() { return Status(0); }

    // The code says what went wrong, or is 0.
    static Status fromExceptionCode(std::int32_t code) { return Status(code); }

    bool isOk() const { return exception == 0; }

  private:
    explicit Status(std::int32_t code) : exception(code) {}

    std::int32_t exception;
};

}  // namespace android::binder
