#include "tools/vig/events/EventReader.h"

#include <fcntl.h>
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

EventReader::EventReader(int source, std::string sourceName, const Interruption& interruption,
                         std::function<void()> waiting)
    : name(std::move(sourceName)), lines(source, name, interruption, std::move(waiting)) {}

EventReader::Status EventReader::next() {
    std::string_view line;
    do {
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
    } while (isBlank(line));
    current = parser.parse(line);
    if (current != nullptr) {
        return Status::Record;
    }
    message = name + ":" + std::to_string(lines.lineNumber()) + ": error: " + parser.error();
    return Status::Failed;
}

}  // namespace Brenta::OS::VIG::Tool
