#pragma once

#include <memory>
#include <utility>

namespace android {

// It is one owner of an object, or null. The last one to go deletes the object, on its own thread.
template <typename T>
class sp : public std::shared_ptr<T> {
  public:
    using std::shared_ptr<T>::shared_ptr;
    sp(std::shared_ptr<T> owner) : std::shared_ptr<T>(std::move(owner)) {}

    // Makes a new object and its first owner.
    template <typename... Arguments>
    static sp make(Arguments&&... arguments) {
        return std::make_shared<T>(std::forward<Arguments>(arguments)...);
    }
};

}  // namespace android
