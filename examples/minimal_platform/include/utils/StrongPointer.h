#pragma once

#include <memory>

namespace android {

template <typename T>
using sp = std::shared_ptr<T>;

}  // namespace android
