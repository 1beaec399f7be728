#pragma once

#include <unistd.h>

#include <utility>

namespace Brenta::OS::VIG::Tool {

// Owns an open file.
class Descriptor {
  public:
    // -1 stands for none.
    explicit Descriptor(int number) : value(number) {}
    Descriptor(Descriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        if (isOpen()) {
            close(value);
        }
    }

    bool isOpen() const { return value >= 0; }
    int get() const { return value; }

  private:
    int value;
};

}  // namespace Brenta::OS::VIG::Tool
