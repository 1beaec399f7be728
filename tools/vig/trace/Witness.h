#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// It is a recording that shows something, and what the machine that it is about did with it, in the library.
struct Witness {
    // One transition that the machine tried.
    struct Trial {
        std::uint64_t event;  // counted from 1, and 0 when it starts
        std::size_t transition;
        std::vector<bool> verdicts;  // of its filters, up to the first that is false
        bool fired;
    };

    std::vector<EventRecord> events;
    std::vector<double> draws;            // of all machines that play, in order; the last one is drawn for ever
    std::vector<Trial> trials;            // those of all events
    std::vector<std::uint64_t> triggers;  // the events by which it asked for collections
    std::uint64_t moves = 0;              // of all machines

    // Tell whether the machine fired it by the event, the last one or that of the number, or after that.
    bool fires(std::size_t transition, std::uint64_t event) const;
    bool firesAtTheEnd(std::size_t transition) const;
};

}  // namespace Brenta::OS::VIG::Tool
