#pragma once

namespace support {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHasAddressSanitizer = true;
#elif defined(__has_feature)
constexpr bool kHasAddressSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool kHasAddressSanitizer = false;
#endif

}  // namespace support
