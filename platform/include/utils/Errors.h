#pragma once

#include <cerrno>
#include <cstdint>

namespace android {

// An operation of the platform returns 0, or a negated errno value.
using status_t = std::int32_t;

inline constexpr status_t NO_ERROR = 0;
inline constexpr status_t NAME_NOT_FOUND = -ENOENT;

}  // namespace android
