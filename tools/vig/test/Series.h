#pragma once

#include <json/value.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tools/vig/document/StrictJson.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// Reads events that a test tells in short:
//   {"event": "ProcessMemoryHeartBeat", "every_ms": 8000, "processName": "camera", "vmRssKB": "100000 220000x3 140000"}
// An attribute has one value, which all events have, or as many as the others that have several. The catalogue that is
// built in says of which kind it is; one that this does not know stands under its kind, as in a record. What the
// library's actions read of such events is 0 if it is a number and the series leaves it out.
class SeriesReader {
  public:
    static constexpr std::size_t kMostEvents = 100'000;  // of all that one reader reads

    static constexpr std::size_t kMostBytes = 64 << 20;  // of their names and texts

    // Both must outlive it.
    SeriesReader(const DocumentText& text, StrictJson& json) : document(text), check(json) {}

    // Returns the events of a series, or of an array of them, one after the other. Complains of what is wrong, and
    // returns anything then.
    std::vector<EventRecord> read(const Json::Value& json, const std::string& path);

  private:
    void readOne(const Json::Value& json, const std::string& path, std::vector<EventRecord>& events);

    const DocumentText& document;
    StrictJson& check;
    std::size_t count = 0;
    std::size_t bytes = 0;
};

}  // namespace Brenta::OS::VIG::Tool
