#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/events/EventReader.h"
#include "tools/vig/events/LineReader.h"
#include "tools/vig/events/RecordParser.h"
#include "tools/vig/io/Output.h"

namespace support {

namespace Tool = Brenta::OS::VIG::Tool;

// Holds what a reader makes of a text up to its end or the error. It comes out of a pipe, in pieces of that size.
struct Reading {
    explicit Reading(std::string_view text, std::size_t piece = 32768,
                     Tool::EventReader::Devices devices = Tool::EventReader::Devices::Any) {
        int ends[2] = {-1, -1};
        const int status = pipe(ends);
        const Tool::Interruption never;
        Tool::EventReader reader(ends[0], "events.jsonl", devices, never, [&] {
            atWaits.push_back(records.size());
            if (text.empty()) {
                close(std::exchange(ends[1], -1));
            } else if (const std::string_view sent = text.substr(0, piece);
                       status != 0 || write(ends[1], sent.data(), sent.size()) != std::ssize(sent)) {
                std::abort();
            }
            text.remove_prefix(std::min(piece, text.size()));
        });
        while (reader.next() == Tool::EventReader::Status::Record) {
            records.push_back(reader.record());
        }
        error = reader.error();
        bytes = reader.bytesRead();
        close(ends[0]);
        close(ends[1]);  // open if the reader has given up
    }

    bool isSame(const Reading& other) const { return records == other.records && error == other.error; }

    std::vector<Tool::EventRecord> records;
    std::vector<std::size_t> atWaits;  // how many records there were whenever it waited for the pipe
    std::string error;
    std::uint64_t bytes;
};

// Holds what a parser makes of a line.
struct Outcome {
    Outcome(Tool::RecordParser& parser, const std::string& line) {
        const std::string padded = line + std::string(Tool::LineReader::PADDING, '\n');
        if (const Tool::EventRecord* const read = parser.parse(std::string_view(padded).substr(0, line.size()))) {
            record = *read;
        } else {
            error = parser.error();
        }
    }

    bool operator==(const Outcome&) const = default;

    std::optional<Tool::EventRecord> record;
    std::string error;
};

// A parser that has read nothing knows no layout of lines.
inline Outcome alone(const std::string& line) {
    Tool::RecordParser parser;
    return {parser, line};
}

inline std::string written(const std::vector<Tool::EventRecord>& records) {
    std::string text;
    Tool::Output output([&](std::string_view piece) {
        text += piece;
        return 0;
    });
    for (const Tool::EventRecord& each : records) {
        writeEvent(output, each);
    }
    output.flush();
    return text;
}

}  // namespace support
