#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It says how often each transition of a device fired, by the indices of the configuration and of the transition.
using FiredCounts = std::vector<std::vector<std::uint64_t>>;

// It tells what became of one device of a fleet.
struct DeviceResult {
    std::string device;  // the name of its file, or "<stdin>"; any bytes
    bool begun = false;  // its file could be opened
    bool ended = false;  // nothing kept it from its end
    std::uint64_t events = 0;
    std::uint64_t triggers = 0;
    FiredCounts fired = {};
    std::string problem = {};  // why it failed; empty if it did not
};

// It tells what the devices of a fleet did, in memory that does not grow with their number but with that of the
// different numbers of triggers. Adding devices in any order, in one summary or in several that are merged, gives the
// same.
struct FleetSummary {
    struct Count {
        std::uint64_t devices = 0;  // on which it fired at least once
        std::uint64_t fired = 0;

        void add(const Count& other);
        bool operator==(const Count&) const = default;
    };

    struct Transition {
        std::string path;  // of JSON
        std::string from;
        std::string to;
        std::string event;
        Count count = {};
    };

    struct Config {
        std::string path;
        std::int64_t id;
        Count count = {};  // of all its transitions
        std::vector<Transition> transitions;
    };

    // It names a device that triggers so often that a collection for each cannot be meant.
    struct Storm {
        static constexpr std::uint64_t LEAST_TRIGGERS = 10;
        static constexpr std::uint64_t MOST_EVENTS = 100;  // for each of its triggers, on average

        std::string device;  // well-formed UTF-8
        std::uint64_t triggers;
        std::uint64_t events;

        // The order is that of their triggers, then of their names.
        bool comesBefore(const Storm& other) const;
        bool operator==(const Storm&) const = default;
    };

    static constexpr std::size_t MOST_STORMS_NAMED = 5;

    // No number of a summary that is written down is larger: also programs that know only doubles read those exactly.
    static constexpr std::uint64_t MOST = std::uint64_t{1} << 53;

    static bool isStorm(std::uint64_t triggers, std::uint64_t events);

    // Returns a summary of no device yet.
    static FleetSummary of(const DocumentModel& document);

    void add(const DeviceResult& result);

    // REQUIRES: isOfSameDocument(other), and nothing is tooLarge() in either.
    void merge(const FleetSummary& other);

    // Returns the JSON path of a number that is larger than MOST; empty if there is none.
    std::string tooLarge() const;

    bool isOfSameDocument(const FleetSummary& other) const;

    // Counts the devices whose files could be opened; the numbers but `failed` and `unfinished` are about them.
    std::uint64_t devices() const;

    std::uint64_t triggers() const;

    // Returns the least number of triggers that is enough for that percentage of the devices; 0 if there is no device.
    std::uint64_t percentile(std::uint64_t percent) const;

    std::string documentHash;  // of its text
    std::vector<Config> configs;
    std::uint64_t failed = 0;      // devices that could not be opened, or whose records are bad from some line on
    std::uint64_t unfinished = 0;  // devices that an interruption kept from their end, or from their beginning
    std::uint64_t events = 0;
    std::map<std::uint64_t, std::uint64_t> devicesByTriggers;
    std::uint64_t stormyDevices = 0;
    std::vector<Storm> worstStorms;  // the first few of them

  private:
    void keepWorstStorms();
};

// Returns aligned lines for a person, without what a terminal would act on.
std::string textOf(const FleetSummary& summary);

// Returns the same as a line with one JSON object, which readSummary() reads back to an equal one. `first` is put
// before its keys.
std::string jsonOf(const FleetSummary& summary, const std::string& first);

}  // namespace Brenta::OS::VIG::Tool
