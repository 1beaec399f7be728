#include "tools/vig/events/EventReader.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "tools/vig/io/FileText.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

Descriptor openEvents(const std::string& events, const Console& console) {
    Descriptor file(isStandardInput(events) ? dup(console.in)
                                            : open(events.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.isOpen() && fstat(file.get(), &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return Descriptor(-1);
    }
    return file;
}

std::string whyEventsNotOpened(const std::string& events, int error) {
    return "vig: error: " + (isStandardInput(events) ? "standard input" : events) + ": " + systemError(error);
}

std::string nameOfEvents(const std::string& events) {
    return nameOfInput(events);
}

std::string OneDevice::mistakeIn(const EventRecord& record) const {
    return hasEnded ? "device: " + shownQuoted(name) + " has ended; vig run --by-device begins anew"
                    : fmt::format("device: {} after {}; vig run --by-device gives each machines of its own",
                                  shownQuoted(record.device), shownQuoted(name));
}

EventReader::EventReader(int source, std::string sourceName, Devices devices, const Interruption& interruption,
                         std::function<void()> waiting)
    : name(std::move(sourceName)), devices(devices), lines(source, name, interruption, std::move(waiting)) {}

EventReader::Status EventReader::next() {
    std::string_view line;
    while (true) {
        switch (lines.next(line)) {
            case LineReader::Status::Line:
                break;
            case LineReader::Status::End:
                return Status::End;
            case LineReader::Status::Interrupted:
                return Status::Interrupted;
            case LineReader::Status::Failed:
                message = lines.problem();
                return Status::Failed;
        }
        current = parser.parse(line);
        // No record is blank, so that only what is none has to be looked at.
        if (current == nullptr && isBlank(line)) {
            continue;
        }
        if (current == nullptr || !acceptsDeviceOf(*current)) {
            message = name + ":" + std::to_string(lines.lineNumber()) +
                      ": error: " + (current == nullptr ? parser.error() : mistakeIn(*current));
            return Status::Failed;
        }
        if (!current->isEnd || devices != Devices::One) {
            return Status::Record;
        }
    }
}

bool EventReader::acceptsDeviceOf(const EventRecord& record) {
    switch (devices) {
        case Devices::One:
            return device.accepts(record);
        case Devices::Named:
            return !record.device.empty();
        case Devices::Any:
            break;
    }
    return true;
}

std::string EventReader::mistakeIn(const EventRecord& record) const {
    return devices == Devices::One ? device.mistakeIn(record)
                                   : "device: missing, without which nobody knows whose event it is";
}

}  // namespace Brenta::OS::VIG::Tool
