#pragma once

#include <utils/RefBase.h>

#include <utility>

namespace android {

// One owner of a RefBase, or null. As with std::shared_ptr, owners of one object may live on different threads,
// but one owner belongs to one thread at a time.
template <typename T>
class sp {
  public:
    // A new object and its first owner.
    template <typename... Arguments>
    static sp make(Arguments&&... arguments) {
        return sp(new T(std::forward<Arguments>(arguments)...));
    }

    sp() = default;

    // Null, or a further owner of `object`, which lives on the heap. Not explicit, as on the device.
    sp(T* object) : pointer(object) {
        if (pointer != nullptr) {
            pointer->incStrong();
        }
    }

    sp(const sp& other) : sp(other.pointer) {}
    sp(sp&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}

    template <typename U>
    sp(const sp<U>& other) : sp(other.get()) {}

    ~sp() { clear(); }

    sp& operator=(sp other) noexcept {
        std::swap(pointer, other.pointer);
        return *this;
    }

    void clear() {
        if (T* const released = std::exchange(pointer, nullptr)) {
            released->decStrong();
        }
    }

    T* get() const { return pointer; }
    T* operator->() const { return pointer; }
    T& operator*() const { return *pointer; }
    explicit operator bool() const { return pointer != nullptr; }

    template <typename U>
    bool operator==(const sp<U>& other) const {
        return pointer == other.get();
    }

    bool operator==(const T* object) const { return pointer == object; }

  private:
    T* pointer = nullptr;
};

}  // namespace android
