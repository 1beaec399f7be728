#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/events/ByteSource.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Cuts what a descriptor delivers into lines, in memory that only the longest line can make larger. Lines are handed
// out as soon as they have arrived, also from a pipe that delivers slowly. Compressed data is decompressed, see
// ByteSource. A byte order mark at the very beginning is left out.
class LineReader {
  public:
    enum class Status { Line, End, Interrupted, Failed };

    // At least so many bytes after a line may be read; the first of them is a line feed.
    static constexpr std::size_t PADDING = 64;

    // A longer line is an error. Of compressed data much less is accepted, because a small file can hold a huge line.
    static constexpr std::size_t LONGEST_LINE = std::size_t{1} << 28;
    static constexpr std::size_t LONGEST_COMPRESSED_LINE = std::size_t{1} << 24;

    // The descriptor stays the caller's; messages call it `sourceName`. `waiting` is called whenever nothing has
    // arrived and the reader is about to wait, which an interruption ends.
    LineReader(int input, std::string sourceName, const Interruption& interruption, std::function<void()> waiting);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Hands out the next line without its line feed, valid until the next call. A last line may lack the line feed.
    Status next(std::string_view& line);

    // Counts lines from 1; after Failed, it is the number of the one that could not be read.
    std::uint64_t lineNumber() const { return number; }

    // Returns, after Failed, a line for a person: "events.jsonl:12: error: …" if a line is too long or the compressed
    // data is damaged there, else why nothing more can be read.
    std::string problem() const;

    // Counts what came from the descriptor.
    std::uint64_t bytesRead() const { return source.bytesRead(); }

  private:
    std::size_t longest() const { return source.isCompressed() ? LONGEST_COMPRESSED_LINE : LONGEST_LINE; }
    Status handOut(std::size_t length, std::string_view& line);
    Status fail(int why);
    Status fill();
    void makeRoom();
    bool waitForInput();

    const int descriptor;
    const std::string name;
    ByteSource source;
    const Interruption& interruption;
    const std::function<void()> beforeWaiting;
    bool alwaysReady;
    std::vector<char> buffer;
    std::size_t begin = 0;    // of the line that comes next
    std::size_t scanned = 0;  // up to here it has no line feed
    std::size_t end = 0;      // of what has been read
    bool finished = false;
    std::uint64_t number = 0;
    int error = 0;
};

}  // namespace Brenta::OS::VIG::Tool
