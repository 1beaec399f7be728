#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// Tells which steps are worth a look, among many in which nothing happens: those in which a transition fires, and what
// the machine then does by the same event, and those in which a transition comes nearer to it than before, since the
// machine is in its state. It does so if more of its filters hold than before; or if it is stopped by the same filter
// as before, which compares numbers, and they are less than half as far apart. That a first filter compares other texts
// is no nearness, for it is how most documents choose a process. So there are only so many of these steps between two
// moves, however many events come; and only the first few of one event, where states that are entered lead on and on.
class Highlights {
  public:
    // Is to be told each step, in order.
    bool has(const Step& step);

  private:
    struct Nearest {
        std::size_t held;                // filters
        std::optional<double> distance;  // from which the next one would have held
    };

    struct OfMachine {
        std::map<std::size_t, Nearest> nearest;  // by the index of the transition
        std::optional<std::uint64_t> moving;     // the latest event that made it move
        std::size_t steps = 0;                   // that were worth a look by that event
    };

    static bool comesNearer(const Attempt& attempt, OfMachine& machine);

    std::map<std::size_t, OfMachine> machines;
};

}  // namespace Brenta::OS::VIG::Tool
