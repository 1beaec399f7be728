#pragma once

#include "tools/vig/EventRecord.h"
#include "tools/vig/Output.h"

namespace tool {

// Writes the record as a line that RecordParser reads back to an equal one.
// REQUIRES: doubles are finite; names and strings are well-formed UTF-8; attributes are sorted.
void writeEvent(Output& output, const EventRecord& record);

}  // namespace tool
