#pragma once

#include <cstdint>

namespace android::binder {

// How a call on a service ended.
class Status {
  public:
    static constexpr std::int32_t EX_NONE = 0;
    static constexpr std::int32_t EX_ILLEGAL_ARGUMENT = -3;
    static constexpr std::int32_t EX_ILLEGAL_STATE = -5;
    static constexpr std::int32_t EX_SERVICE_SPECIFIC = -8;

    static Status ok() { return Status(EX_NONE, 0); }

    // `code` is one of the EX_ constants.
    static Status fromExceptionCode(std::int32_t code) { return Status(code, 0); }

    // `code` is one that the service's interface defines.
    static Status fromServiceSpecificError(std::int32_t code) { return Status(EX_SERVICE_SPECIFIC, code); }

    bool isOk() const { return exception == EX_NONE; }
    std::int32_t exceptionCode() const { return exception; }

    // 0 unless the exception code is EX_SERVICE_SPECIFIC.
    std::int32_t serviceSpecificErrorCode() const { return specific; }

  private:
    Status(std::int32_t exceptionValue, std::int32_t specificValue)
        : exception(exceptionValue), specific(specificValue) {}

    std::int32_t exception;
    std::int32_t specific;
};

}  // namespace android::binder
