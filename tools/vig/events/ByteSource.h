#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

class Decoder;

// So many bytes tell the format of a stream.
inline constexpr std::size_t kMagicSize = 4;

// Returns true if the bytes, which may be fewer than kMagicSize, can begin a compressed stream.
bool mayBeCompressed(std::string_view head);

// It reads the bytes that a descriptor delivers; decompressed, if the first ones say that they are gzip or zstd, also
// of several members or frames after each other, and of gzip with zeros after the last one. Its memory does not depend
// on the data, but for the window of a zstd frame, which is at most 128 MiB.
class ByteSource {
  public:
    // The descriptor stays the caller's.
    explicit ByteSource(int source);
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    ~ByteSource();

    // Reads as read(2) does, and like that takes at most one piece from the descriptor: EAGAIN if this gave no bytes
    // yet, EBADMSG if the data cannot be decompressed; problem() then says why.
    ssize_t read(char* to, std::size_t size);

    // Returns true if the next read() can give bytes without the descriptor.
    bool isReady() const;

    bool isCompressed() const { return decoder != nullptr; }

    // Returns an empty text but after EBADMSG.
    const std::string& problem() const { return whyCorrupt; }

    // Counts what came from the descriptor.
    std::uint64_t bytesRead() const { return total; }

  private:
    ssize_t readRaw(char* to, std::size_t size);
    ssize_t readHead();
    ssize_t readDecoded(char* to, std::size_t size);
    ssize_t fail(const std::string& why);

    const int descriptor;
    bool begun = false;                // it is known what the bytes are
    bool ended = false;                // the descriptor has no more
    bool mayGoOn = false;              // the decoder may have more without further input
    std::string input;                 // the first bytes; of compressed data, the latest piece
    std::size_t taken = 0;             // of the input
    std::unique_ptr<Decoder> decoder;  // null for plain bytes
    std::string whyCorrupt;
    std::uint64_t total = 0;
};

}  // namespace Brenta::OS::VIG::Tool
