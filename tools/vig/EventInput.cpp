#include "tools/vig/EventInput.h"

#include <fcntl.h>
#include <unistd.h>

namespace tool {

Descriptor openEvents(const std::string& events, const Console& console) {
    return Descriptor(isStandardInput(events) ? dup(console.in)
                                              : open(events.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

}  // namespace tool
