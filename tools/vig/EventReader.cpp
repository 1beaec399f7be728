#include "tools/vig/EventReader.h"

#include <string_view>
#include <utility>

#include "tools/vig/Text.h"

namespace tool {

namespace {
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
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
    } while (isBlank(line));
    if (parser.parse(line, record)) {
        return Status::Record;
    }
    message = name + ":" + std::to_string(lineNumber) + ": error: " + parser.error();
    return Status::Failed;
}

}  // namespace tool
