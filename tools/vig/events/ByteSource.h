#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Brenta::OS::VIG::Tool {

class Decoder;

// The bytes that a descriptor delivers; decompressed, if the first ones say that they are gzip or zstd, also of
// several members or frames after each other, and of gzip with zeros after the last one. Its memory does not depend on
// the data, but for the window of a zstd frame, which is at most 128 MiB.
class ByteSource {
  public:
    // The descriptor stays the caller's.
    explicit ByteSource(int source);
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    ~ByteSource();

    // As read(2), and like that it takes at most one piece from the descriptor: EAGAIN if this gave no bytes yet.
    // EBADMSG if the data cannot be decompressed; problem() then says why.
    ssize_t read(char* to, std::size_t size);

    // Whether the next read() can give bytes without the descriptor.
    bool isReady() const;

    bool isCompressed() const { return decoder != nullptr; }

    // Empty but after EBADMSG.
    const std::string& problem() const { return whyCorrupt; }

    // From the descriptor.
    std::uint64_t bytesRead() const { return total; }

  private:
    ssize_t readRaw(char* to, std::size_t size);
    ssize_t readHead();
    ssize_t readDecoded(char* to, std::size_t size);
    ssize_t fail(std::string why);

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
