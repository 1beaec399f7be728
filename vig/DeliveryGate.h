#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace Brenta::OS::VIG {

// Lets the deliveries of a manager's latest registration through, one at a time. It is no lock that a service call
// could wait for: whoever waits leaves as soon as its registration is over, or the gate is closed. Among several that
// wait, any may be the next.
//
// A change listener shares the gate with the manager and may outlive it: the device-configuration library may still
// call a listener that was removed, which then finds the gate closed.
class DeliveryGate {
  public:
    // The calling thread is in a delivery for as long as the object lives. Construction waits for the end of the
    // delivery under way; a delivery that begins within another one on the same thread does not wait for it.
    class Passage {
      public:
        Passage(DeliveryGate& entered, std::uint64_t registration);
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;
        ~Passage();

        // Returns false if the registration is over or the gate is closed: then nothing may be delivered.
        explicit operator bool() const { return open; }

      private:
        DeliveryGate& gate;
        bool admitted = false;
        bool open = false;
    };

    // Ends the latest registration and returns the number of the one that follows it, 1 at first.
    std::uint64_t beginRegistration();

    // Returns the number of the latest registration, 0 if there was none.
    std::uint64_t latestRegistration() const;

    // Returns true if the calling thread is in a delivery.
    bool isInside() const;

    // Lets no delivery begin any more, and returns when the one under way has ended.
    // REQUIRES: not called from within a passage (asserted in debug builds).
    void close();

  private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool closed = false;       // guarded by mutex
    std::uint64_t latest = 0;  // guarded by mutex
    std::thread::id inside;    // guarded by mutex; the thread that delivers, if any
};

}  // namespace Brenta::OS::VIG
