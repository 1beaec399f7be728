#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Decompresses a stream that arrives in pieces.
class Decoder {
  public:
    struct Progress {
        std::size_t taken;     // of the input
        std::size_t produced;  // of the output
    };

    virtual ~Decoder() = default;

    // As much as there is input and room. False from where the input is corrupt, with the reason in problem().
    virtual bool decode(std::string_view input, std::span<char> output, Progress& progress) = 0;

    // Whether the input may end here.
    virtual bool isComplete() const = 0;

    // What messages call the format.
    virtual std::string_view format() const = 0;

    const std::string& problem() const { return whyCorrupt; }

  protected:
    std::string whyCorrupt;
};

// How many bytes tell the format of a stream.
inline constexpr std::size_t kMagicSize = 4;

// Whether the bytes, which may be fewer than kMagicSize, can begin a compressed stream.
bool mayBeCompressed(std::string_view head);

// Null if a stream that begins like that is not compressed. REQUIRES: these are kMagicSize bytes, or all there are.
std::unique_ptr<Decoder> decoderFor(std::string_view head);

}  // namespace Brenta::OS::VIG::Tool
