#include "tools/vig/events/LineReader.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kInitialSize = std::size_t{1} << 16;

bool isRegularFile(int descriptor) {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

LineReader::LineReader(int input, std::string sourceName, const Interruption& interruption,
                       std::function<void()> waiting)
    : descriptor(input),
      name(std::move(sourceName)),
      source(input),
      interruption(interruption),
      beforeWaiting(std::move(waiting)),
      alwaysReady(isRegularFile(input)),
      buffer(kInitialSize) {}

LineReader::Status LineReader::next(std::string_view& line) {
    while (true) {
        char* const from = buffer.data() + scanned;
        if (const void* const found = std::memchr(from, '\n', end - scanned)) {
            return handOut(scanned - begin + static_cast<std::size_t>(static_cast<const char*>(found) - from), line);
        }
        scanned = end;
        if (!finished) {
            if (const Status status = fill(); status != Status::Line) {
                return status;
            }
        } else if (begin == end) {
            return Status::End;
        } else {
            buffer[end] = '\n';  // found in the next round
            ++end;
        }
    }
}

LineReader::Status LineReader::handOut(std::size_t length, std::string_view& line) {
    if (length > longest()) {
        return fail(EFBIG);
    }
    line = std::string_view(buffer.data() + begin, length);
    begin += length + 1;
    scanned = begin;
    if (++number == 1) {
        line = withoutByteOrderMark(line);
    }
    return Status::Line;
}

LineReader::Status LineReader::fail(int why) {
    ++number;
    error = why;
    return Status::Failed;
}

// Reads some more, or notices the end.
LineReader::Status LineReader::fill() {
    makeRoom();
    if (end - begin > longest()) {
        return fail(EFBIG);
    }
    while (true) {
        if (interruption.requested() || !waitForInput()) {
            return Status::Interrupted;
        }
        const ssize_t got = source.read(buffer.data() + end, buffer.size() - PADDING - end);
        if (got >= 0) {
            finished = got == 0;
            end += static_cast<std::size_t>(got);
            return Status::Line;
        }
        if (errno != EINTR && errno != EAGAIN) {
            return fail(errno);
        }
    }
}

void LineReader::makeRoom() {
    if (begin > 0) {
        std::memmove(buffer.data(), buffer.data() + begin, end - begin);
        end -= begin;
        scanned -= begin;
        begin = 0;
    }
    if (buffer.size() < 2 * end + PADDING) {
        buffer.resize(2 * buffer.size());
    }
}

// Returns false if it was interrupted.
bool LineReader::waitForInput() {
    if (alwaysReady || source.isReady()) {
        return true;
    }
    pollfd sources[] = {{descriptor, POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
    if (poll(sources, 1, 0) == 0) {
        beforeWaiting();
        poll(sources, 2, -1);
    }
    return !interruption.requested();
}

std::string LineReader::problem() const {
    if (error == EFBIG) {
        return fmt::format("{}:{}: error: the line has more than {} bytes, the most that is read{}", name, number,
                           longest(), source.isCompressed() ? " of compressed data" : "");
    }
    return source.problem().empty() ? fmt::format("vig: error: {}: {}", name, systemError(error))
                                    : fmt::format("{}:{}: error: {}", name, number, source.problem());
}

}  // namespace Brenta::OS::VIG::Tool
