#include "tools/vig/events/EventInput.h"

#include <fcntl.h>
#include <unistd.h>

namespace Brenta::OS::VIG::Tool {

Descriptor openEvents(const std::string& events, const Console& console) {
    return Descriptor(isStandardInput(events) ? dup(console.in)
                                              : open(events.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

}  // namespace Brenta::OS::VIG::Tool
