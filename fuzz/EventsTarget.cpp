#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/Limits.h"
#include "tools/vig/events/ByteSource.h"
#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/io/Output.h"

// A file of event records, plain or compressed. Read in small pieces it must give the same as in large ones, and each
// record written and read again must be the same one.

namespace Tool = Brenta::OS::VIG::Tool;

namespace {

using Tool::EventReader;
using Tool::EventRecord;

struct Reading {
    std::vector<EventRecord> records = {};
    std::string error = {};

    bool operator==(const Reading&) const = default;
};

// Reads the events through a pipe, in pieces of that size.
Reading readEvents(std::string_view text, std::size_t size) {
    static const Tool::Interruption never;
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        fuzz::fail("there is no pipe");
    }
    EventReader reader(ends[0], "events", never, [&] {
        const std::string_view piece = text.substr(0, size);
        if (piece.empty()) {
            close(std::exchange(ends[1], -1));
        } else if (write(ends[1], piece.data(), piece.size()) != static_cast<ssize_t>(piece.size())) {
            fuzz::fail("the pipe is full");
        }
        text.remove_prefix(piece.size());
    });
    Reading reading;
    EventRecord record;
    auto status = reader.next(record);
    for (; status == EventReader::Status::Record; status = reader.next(record)) {
        reading.records.push_back(record);
    }
    reading.error = status == EventReader::Status::Failed ? reader.error() : "";
    close(ends[0]);
    close(ends[1]);  // open if the reader has given up
    return reading;
}

std::string written(const std::vector<EventRecord>& records) {
    std::string text;
    Tool::Output output([&](std::string_view piece) {
        text += piece;
        return 0;
    });
    std::ranges::for_each(records, [&](const EventRecord& each) { writeEvent(output, each); });
    output.flush();
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLargePiece = 32768;
    constexpr std::size_t kOneIn = 8;  // most of the time goes into making a reader
    const std::string text(reinterpret_cast<const char*>(data), size);
    // A small compressed file may ask for a large window, and holds lines that are larger than it.
    const std::size_t always = (Tool::mayBeCompressed(text.substr(0, Tool::kMagicSize)) ? 200 : 4) * fuzz::kMegabyte;
    Reading reading;
    fuzz::useWithinLimits(text, always, [&](const std::string& events) { reading = readEvents(events, kLargePiece); });
    if (size % kOneIn == 0 && readEvents(text, std::min(1 + size / 3, kLargePiece)) != reading) {
        fuzz::fail("small pieces give something else");
    }
    if (const std::string text = written(reading.records); readEvents(text, kLargePiece) != Reading{reading.records}) {
        fuzz::fail("read again otherwise: " + text);
    }
    return 0;
}
