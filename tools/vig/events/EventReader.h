#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tools/vig/events/EventRecord.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Reads event records, one JSON object a line, from a descriptor, in memory that does not grow with their number.
// The lines may be compressed by gzip or zstd. Empty lines are skipped.
class EventReader {
  public:
    enum class Status { Record, End, Interrupted, Failed };

    // `sourceName` stands in messages. For the rest see LineReader.
    EventReader(int source, std::string sourceName, const Interruption& interruptedBy, std::function<void()> waiting);

    // Fills `record` with the next one.
    Status next(EventRecord& record);

    // After Failed: "events.jsonl:12: error: …" for a bad line, or why nothing can be read.
    const std::string& error() const { return message; }

    std::uint64_t bytesRead() const { return lines.bytesRead(); }

  private:
    const std::string name;
    LineReader lines;
    RecordParser parser;
    std::string message;
};

}  // namespace Brenta::OS::VIG::Tool
