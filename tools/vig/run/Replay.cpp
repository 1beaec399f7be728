#include "tools/vig/run/Replay.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "tools/vig/io/FileText.h"

namespace Brenta::OS::VIG::Tool {

std::uint64_t sizeOfEvents(const std::vector<std::string>& files, const Console& console) {
    std::uint64_t size = 0;
    for (const std::string& file : files) {
        struct stat status = {};
        if ((isStandardInput(file) ? fstat(console.in, &status) : stat(file.c_str(), &status)) == 0) {
            if (!S_ISREG(status.st_mode)) {
                return 0;
            }
            size += static_cast<std::uint64_t>(status.st_size);
        }
    }
    return size;
}

Replay::Replay(const std::string& recordedEvents, EventReader::Devices devices, const Console& console,
               const Interruption& interruption)
    : events(recordedEvents), devices(devices), interruption(interruption), file(openEvents(events, console)) {
    if (!file.isOpen() && !interruption.requested()) {
        reason = whyEventsNotOpened(events, errno);
    }
}

bool Replay::play(const std::function<void(const EventRecord&)>& take, Output& output, Progress& progress) {
    if (!file.isOpen()) {
        return false;
    }
    ReadingProgress read(progress);
    std::uint64_t count = 0;
    EventReader reader(file.get(), nameOfEvents(events), devices, interruption, [&] {
        output.flush();
        read.tell(count, reader.bytesRead());
    });
    auto status = EventReader::Status::Record;
    while (!isStopped && !interruption.requested() && !output.failed() &&
           (status = reader.next()) == EventReader::Status::Record) {
        take(reader.record());
        ++count;
        read.update(count, reader.bytesRead());
    }
    read.tell(count, reader.bytesRead());
    if (status == EventReader::Status::Failed) {
        reason = reader.error();
    }
    return status == EventReader::Status::End;
}

}  // namespace Brenta::OS::VIG::Tool
