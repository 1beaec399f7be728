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

    // Fills `record` from one JSON object. Returns false, with the record in any state, if the text is not a record.
    // REQUIRES: LineReader::PADDING bytes after the text may be read, the first of them a line feed.
    bool parse(std::string_view text, EventRecord& record);

    // Says what is wrong with the last text, naming the key at fault.
    const std::string& error() const;

  private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

}  // namespace Brenta::OS::VIG::Tool
