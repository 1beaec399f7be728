#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace Brenta::OS::VIG {

// Lets the deliveries of one manager through one at a time, in the order in which they arrived, until it is
// closed. A change listener shares it with the manager and may outlive it: the device-configuration library
// may still call a listener that was removed, which then finds the gate closed.
class DeliveryGate {
  public:
    // The passage of the calling thread for as long as the object lives. Construction waits for the thread's
    // turn; a delivery that begins within another one on the same thread does not wait for it.
    class Passage {
      public:
        explicit Passage(DeliveryGate& entered);
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;
        ~Passage();

        // False once the gate is closed: then nothing may be delivered.
        explicit operator bool() const { return open; }

      private:
        DeliveryGate& gate;
        bool admitted = false;
        bool open = false;
    };

    // Lets no delivery begin any more, and returns when the one under way has ended.
    // REQUIRES: not called from within a passage (asserted in debug builds).
    void close();

  private:
    std::mutex mutex;
    std::condition_variable moved;
    bool closed = false;           // guarded by mutex
    std::uint64_t nextTicket = 0;  // guarded by mutex
    std::uint64_t served = 0;      // guarded by mutex
    std::thread::id inside;        // guarded by mutex
};

}  // namespace Brenta::OS::VIG
