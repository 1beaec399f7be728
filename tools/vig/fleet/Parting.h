#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vig/diff/MachinePairs.h"
#include "tools/vig/fleet/DiffSummary.h"
#include "tools/vig/trace/Trace.h"

namespace Brenta::OS::VIG::Tool {

// It is everything that can be seen of what a machine does with one event.
struct Doings {
    struct Trigger {
        std::string name;
        std::optional<std::string> processName;
        std::vector<std::string> metadata;

        bool operator==(const Trigger&) const = default;
    };

    struct Log {
        int priority;
        std::string tag;
        std::string message;

        bool operator==(const Log&) const = default;
    };

    std::vector<Trigger> triggers;
    std::vector<Log> logs;

    bool isEmpty() const { return triggers.empty() && logs.empty(); }
};

// It tells of the first event by which two documents do something else on a device, and of each pair of machines that
// does.
struct Parting {
    struct Machine {
        const MachinePair* pair;
        Both<Doings> doings;
        Both<std::vector<Step>> steps;  // how they came to that; they refer to the documents
    };

    std::uint64_t event;  // counted from 1; 0 while the machines are started
    std::optional<std::int64_t> timeMs;
    std::vector<Machine> machines;
};

// Return what is to be said of a device on which two documents do something else: lines for a person, without what a
// terminal would act on, or one with a JSON object.
std::string textOf(const DeviceDiff& diff, const Parting& parting);
std::string jsonOf(const DeviceDiff& diff, const Parting& parting);

}  // namespace Brenta::OS::VIG::Tool
