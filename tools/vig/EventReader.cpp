#include "tools/vig/EventReader.h"

#include <string_view>
#include <utility>

namespace tool {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isEmpty(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

}  // namespace

EventReader::EventReader(int source, std::string sourceName, const Interruption& interruptedBy,
                         std::function<void()> waiting)
    : name(std::move(sourceName)), lines(source, interruptedBy, std::move(waiting)) {}

EventReader::Status EventReader::next(EventRecord& record) {
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
                message = "vig: error: " + name + ": " + lines.problem();
                return Status::Failed;
        }
        if (++lineNumber == 1 && line.starts_with(kByteOrderMark)) {
            line.remove_prefix(kByteOrderMark.size());
        }
    } while (isEmpty(line));
    if (parser.parse(line, record)) {
        return Status::Record;
    }
    message = name + ":" + std::to_string(lineNumber) + ": error: " + parser.error();
    return Status::Failed;
}

}  // namespace tool
