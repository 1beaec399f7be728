#pragma once

#include <pthread.h>

#include <cstddef>

namespace support {

// While it lives no thread can be created, since its stack would be larger than the address space.
class ImpossibleThreads {
  public:
    ImpossibleThreads() {
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &usual);
        setSize(std::size_t{1} << 60);
    }
    ImpossibleThreads(const ImpossibleThreads&) = delete;
    ImpossibleThreads& operator=(const ImpossibleThreads&) = delete;
    ~ImpossibleThreads() {
        setSize(usual);
        pthread_attr_destroy(&attributes);
    }

  private:
    void setSize(std::size_t size) {
        pthread_attr_setstacksize(&attributes, size);
        pthread_setattr_default_np(&attributes);
    }

    pthread_attr_t attributes;
    std::size_t usual = 0;
};

}  // namespace support
