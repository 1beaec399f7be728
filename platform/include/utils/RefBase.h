#pragma once

#include <atomic>

namespace android {

// Base of objects that count their owners, each of them an sp<T>. The last one to go deletes the object, on its
// own thread.
class RefBase {
  public:
    RefBase(const RefBase&) = delete;
    RefBase& operator=(const RefBase&) = delete;

    void incStrong() const { owners.fetch_add(1, std::memory_order_relaxed); }

    void decStrong() const {
        if (owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

  protected:
    RefBase() = default;
    virtual ~RefBase() = default;

  private:
    mutable std::atomic<int> owners = 0;
};

}  // namespace android
