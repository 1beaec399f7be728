#pragma once

#include <pthread.h>

#include <cstddef>

namespace support {

// While it lives no thread can be created, since its stack would be larger than the address space.
class ImpossibleThreads {
  public:
    ImpossibleThreads() {
        pthread_getattr_default_np(&previous);
        pthread_attr_t impossible;
        pthread_attr_init(&impossible);
        pthread_attr_setstacksize(&impossible, std::size_t{1} << 60);
        pthread_setattr_default_np(&impossible);
        pthread_attr_destroy(&impossible);
    }
    ImpossibleThreads(const ImpossibleThreads&) = delete;
    ImpossibleThreads& operator=(const ImpossibleThreads&) = delete;
    ~ImpossibleThreads() {
        pthread_setattr_default_np(&previous);
        pthread_attr_destroy(&previous);
    }

  private:
    pthread_attr_t previous;
};

}  // namespace support
