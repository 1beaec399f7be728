#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tools/vig/events/EventRecord.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Opens the argument EVENTS of a verb: a file of event records, or "-" for standard input. It is not open, with errno
// set, if there is no such file, or if it is a folder. A pipe that nobody writes to yet is waited for by who reads it.
Descriptor openEvents(const std::string& events, const Console& console);

// Returns the line that says why, of an errno value of openEvents().
std::string whyEventsNotOpened(const std::string& events, int error);

// Returns what messages about the records and reports call it.
std::string nameOfEvents(const std::string& events);

// Tells whether records that come one after the other are of one device.
class OneDevice {
  public:
    // Returns false if the next record is not. The ones that were not do not count.
    bool accepts(const EventRecord& record) {
        const bool isNamed = !record.device.empty();
        if (hasEnded || (isNamed && !name.empty() && record.device != name)) {
            return false;
        }
        if (isNamed && name.empty()) {
            name = record.device;
        }
        hasEnded = record.isEnd;
        return true;
    }

    // Returns what is wrong with a record that was not accepted.
    std::string mistakeIn(const EventRecord& record) const;

  private:
    std::string name;  // empty as long as no record has named it
    bool hasEnded = false;
};

// Reads event records, one JSON object a line, from a descriptor, in memory that does not grow with their number.
// The lines may be compressed by gzip or zstd. Empty lines are skipped.
class EventReader {
  public:
    enum class Status { Record, End, Interrupted, Failed };

    // It says of which devices the records are: of one, which they need not name and whose end is not handed out; of
    // any; or of those that each record names.
    enum class Devices { One, Any, Named };

    // `sourceName` stands in messages. For the rest see LineReader.
    EventReader(int source, std::string sourceName, Devices devices, const Interruption& interruption,
                std::function<void()> waiting);

    // Goes on to the next one.
    Status next();

    // Returns, after Record, that one. It is valid until the next call.
    const EventRecord& record() const { return *current; }

    // Returns, after Failed, "events.jsonl:12: error: …" for a bad line, or why nothing can be read.
    const std::string& error() const { return message; }

    std::uint64_t bytesRead() const { return lines.bytesRead(); }

  private:
    bool acceptsDeviceOf(const EventRecord& record);
    std::string mistakeIn(const EventRecord& record) const;

    const std::string name;
    const Devices devices;
    OneDevice device;
    LineReader lines;
    RecordParser parser;
    const EventRecord* current = nullptr;
    std::string message;
};

}  // namespace Brenta::OS::VIG::Tool
