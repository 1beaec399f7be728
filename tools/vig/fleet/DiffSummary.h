#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/diff/MachinePairs.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

// It says what becomes of a device, or of one of its machines, when a new document takes the place of an old one. All
// but the last two are about triggers.
enum class DeviceChange {
    Newly,      // triggers, and did not
    NoLonger,   // the reverse
    More,       // triggers more often, having triggered already
    Less,       // the reverse
    Otherwise,  // triggers as often, but by other events, by other machines or with other contents
    Logs,       // triggers as before, but logs other lines
    None
};

inline constexpr std::array<std::string_view, 7> kDeviceChangeNames = {"newly",     "no_longer", "more", "less",
                                                                       "otherwise", "logs",      "none"};

// It tells what both documents did on one device, all machines of them or two with the same id.
struct BothDid {
    Both<std::uint64_t> triggers = {};
    bool triggersDiffer = false;  // by any event
    bool logsDiffer = false;

    DeviceChange change() const;
};

// It tells what became of one device of a fleet.
struct DeviceDiff {
    std::string device;  // the name of its file, or "<stdin>"; any bytes
    bool begun = false;  // its file could be opened
    bool ended = false;  // nothing kept it from its end
    std::uint64_t events = 0;
    std::vector<BothDid> pairs = {};
    std::optional<std::uint64_t> firstEvent = {};  // by which they differ, if they do
    std::string problem = {};                      // why it failed; empty if it did not

    BothDid all() const;
};

// It tells where two documents do something else on the devices of a fleet, in memory that does not grow with their
// number. Adding devices in any order, in one summary or in several that are merged, gives the same.
struct DiffSummary {
    struct Count {
        std::array<std::uint64_t, kDeviceChangeNames.size()> devices = {};  // with each change
        Both<std::uint64_t> triggers = {};

        void add(const Count& other);
        void add(const BothDid& device);
        std::uint64_t of(DeviceChange change) const { return devices[static_cast<std::size_t>(change)]; }
        std::uint64_t allDevices() const;
    };

    struct Machine {
        std::int64_t id;
        Both<std::string> paths;  // of its configuration in each document; empty if it has none
        Count count = {};
    };

    // It names a device that changes.
    struct Example {
        DeviceChange change;
        std::string device;  // well-formed UTF-8
        Both<std::uint64_t> triggers;
        std::uint64_t event;  // by which the documents first differ there

        // The order is that of the changes, then of how much they are, then of the names.
        bool comesBefore(const Example& other) const;
    };

    static constexpr std::size_t MOST_EXAMPLES = 3;  // of each change

    // Returns a summary of no device yet.
    static DiffSummary of(const DocumentModel& old, const DocumentModel& now);

    void add(const DeviceDiff& diff);

    // REQUIRES: isOfSameDocument(other), and nothing is tooLarge() in either.
    void merge(const DiffSummary& other);

    // Returns the JSON path of a number that is larger than FleetSummary::MOST; empty if there is none.
    std::string tooLarge() const;

    // Returns true if the other one compares the same two documents.
    bool isOfSameDocument(const DiffSummary& other) const;

    // Counts the devices whose files could be opened; the numbers but `failed` and `unfinished` are about them.
    std::uint64_t devices() const { return all.allDevices(); }

    bool isDifferent() const { return all.of(DeviceChange::None) != devices(); }

    Both<std::string> documentHashes;  // of their texts
    Count all;                         // machines together
    std::vector<Machine> machines;
    std::vector<Example> examples;  // the first few of each change
    std::uint64_t failed = 0;       // see FleetSummary
    std::uint64_t unfinished = 0;
    std::uint64_t events = 0;

  private:
    void keepFirstExamples();
};

// Returns aligned lines for a person, without what a terminal would act on.
std::string textOf(const DiffSummary& summary);

// Returns the same as a line with one JSON object, which readSummary() reads back to an equal one. `first` is put
// before its keys.
std::string jsonOf(const DiffSummary& summary, const std::string& first);

}  // namespace Brenta::OS::VIG::Tool
