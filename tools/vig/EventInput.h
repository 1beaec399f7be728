#pragma once

#include <string>

#include "tools/vig/Console.h"
#include "tools/vig/Descriptor.h"

namespace tool {

// The argument EVENTS of a verb: a file of event records, or "-" for standard input.
inline bool isStandardInput(const std::string& events) {
    return events == "-";
}

// Not open, with errno set, if there is no such file.
Descriptor openEvents(const std::string& events, const Console& console);

}  // namespace tool
