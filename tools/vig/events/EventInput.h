#pragma once

#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Descriptor.h"

namespace Brenta::OS::VIG::Tool {

// The argument EVENTS of a verb: a file of event records, or "-" for standard input.
inline bool isStandardInput(const std::string& events) {
    return events == "-";
}

// What messages and reports call it.
inline std::string nameOfEvents(const std::string& events) {
    return isStandardInput(events) ? "<stdin>" : events;
}

// Not open, with errno set, if there is no such file. A pipe that nobody writes to yet is waited for by who reads it.
Descriptor openEvents(const std::string& events, const Console& console);

}  // namespace Brenta::OS::VIG::Tool
