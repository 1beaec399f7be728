#pragma once

#include <atomic>

namespace tool {

// A request to come to an end: asked for once, from a signal handler or any thread, seen at the next event and by
// whoever waits on the descriptor.
class Interruption {
  public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    void request();
    bool requested() const { return flag.load(std::memory_order_relaxed); }

    // Readable once the end has been requested.
    int descriptor() const { return event; }

  private:
    std::atomic<bool> flag = false;
    const int event;
};

// While it lives, the first SIGINT or SIGTERM requests the end; a second one ends the process at once, should it be
// stuck. Writing to a closed pipe fails instead of ending the process. One object at a time.
class InterruptOnSignals {
  public:
    explicit InterruptOnSignals(Interruption& interruption);
    InterruptOnSignals(const InterruptOnSignals&) = delete;
    InterruptOnSignals& operator=(const InterruptOnSignals&) = delete;
    ~InterruptOnSignals();
};

}  // namespace tool
