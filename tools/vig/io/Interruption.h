#pragma once

#include <signal.h>

#include <array>
#include <atomic>

#include "tools/vig/io/Descriptor.h"

namespace Brenta::OS::VIG::Tool {

// It is a request to come to an end: asked for once, from a signal handler or any thread, seen at the next event and by
// whoever waits on the descriptor.
class Interruption {
  public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    void request();
    bool requested() const { return flag.load(std::memory_order_relaxed); }

    // The descriptor is readable once the end has been requested.
    int descriptor() const { return event.get(); }

  private:
    std::atomic<bool> flag = false;
    const Descriptor event;
};

// While it lives, the first SIGINT or SIGTERM requests the end; a second one, of either kind, ends the process at once,
// should it be stuck. One that was ignored before stays so: that is how a script starts a program in its background.
// Writing to a closed pipe, or more than a file may have, fails instead of ending the process. Afterwards all is as it
// was. One object at a time.
class InterruptOnSignals {
  public:
    explicit InterruptOnSignals(Interruption& interruption);
    InterruptOnSignals(const InterruptOnSignals&) = delete;
    InterruptOnSignals& operator=(const InterruptOnSignals&) = delete;
    ~InterruptOnSignals();

  private:
    static constexpr auto kSignals = std::to_array({SIGINT, SIGTERM, SIGPIPE, SIGXFSZ});

    std::array<struct sigaction, kSignals.size()> previous{};
};

}  // namespace Brenta::OS::VIG::Tool
