#pragma once

#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Output.h"

namespace Brenta::OS::VIG::Tool {

// Writes the record as a line that RecordParser reads back to an equal one.
// REQUIRES: doubles are finite; names and strings are well-formed UTF-8; attributes are sorted.
void writeEvent(Output& output, const EventRecord& record);

}  // namespace Brenta::OS::VIG::Tool
