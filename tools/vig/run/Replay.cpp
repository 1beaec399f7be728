#include "tools/vig/run/Replay.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/io/Progress.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns the size in bytes, or 0 if it is not known before the end.
std::uint64_t sizeOf(const Descriptor& file) {
    struct stat status = {};
    const bool known = fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace

Replay::Replay(const std::string& recordedEvents, const Console& console, const Interruption& interruption)
    : events(recordedEvents), interruption(interruption), file(openEvents(events, console)) {
    if (!file.isOpen() && !interruption.requested()) {
        reason = whyEventsNotOpened(events, errno);
    }
}

bool Replay::play(const std::function<void(const EventRecord&)>& take, Output& output, int terminal) {
    if (!file.isOpen()) {
        return false;
    }
    Progress progress(terminal, sizeOf(file));
    std::uint64_t count = 0;
    output.beforeWriting([&] { progress.clear(); });
    EventReader reader(file.get(), nameOfEvents(events), EventReader::Devices::One, interruption, [&] {
        output.flush();
        progress.showIfDue(count, reader.bytesRead());
    });
    auto status = EventReader::Status::Record;
    while (!interruption.requested() && !output.failed() &&
           (status = reader.next()) == EventReader::Status::Record) {
        take(reader.record());
        ++count;
        progress.update(count, reader.bytesRead());
    }
    progress.clear();
    output.beforeWriting({});
    if (status == EventReader::Status::Failed) {
        reason = reader.error();
    }
    return status == EventReader::Status::End;
}

}  // namespace Brenta::OS::VIG::Tool
