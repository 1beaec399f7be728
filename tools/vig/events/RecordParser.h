#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// Reads event records from JSON text. Nothing is guessed and nothing is ignored: what is not part of a record is an
// error.
class RecordParser {
  public:
    RecordParser();
    RecordParser(const RecordParser&) = delete;
    RecordParser& operator=(const RecordParser&) = delete;
    ~RecordParser();

    // Returns the record that one JSON object is, valid until the next call; null if the text is not a record.
    // REQUIRES: LineReader::PADDING bytes after the text may be read, the first of them a line feed.
    const EventRecord* parse(std::string_view text);

    // Says what is wrong with the last text, of which parse() returned null, naming the key at fault.
    const std::string& error() const;

  private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

}  // namespace Brenta::OS::VIG::Tool
