#include "tools/vig/events/ByteSource.h"

#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>

namespace Brenta::OS::VIG::Tool {

// Decompresses a stream that arrives in pieces.
class Decoder {
  public:
    struct Progress {
        std::size_t taken;     // of the input
        std::size_t produced;  // of the output
    };

    explicit Decoder(std::string_view name) : format(name) {}
    virtual ~Decoder() = default;

    // Decodes as much as there is input and room, up to where the input is corrupt.
    virtual Progress decode(std::string_view input, std::span<char> output) = 0;

    const std::string_view format;  // as messages call it
    bool mayEnd = false;            // between two parts of the stream, many of which may follow each other
    std::string problem;            // why the input is corrupt, else empty
};

namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 16;
constexpr std::string_view kGzipMagic("\x1F\x8B", 2);
constexpr std::string_view kZstdMagic("\x28\xB5\x2F\xFD", kMagicSize);
// A zstd file may begin with a frame of something else, which its magic number allows to skip: 0x184D2A50 to …5F.
constexpr std::string_view kSkippableMagic("\x50\x2A\x4D\x18", kMagicSize);

class GzipDecoder final : public Decoder {
  public:
    GzipDecoder() : Decoder("gzip") {
        constexpr int kOnlyGzip = 16;
        isUsable = inflateInit2(&stream, MAX_WBITS + kOnlyGzip) == Z_OK;
    }
    ~GzipDecoder() override { inflateEnd(&stream); }

    Progress decode(std::string_view input, std::span<char> output) override {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = reinterpret_cast<Bytef*>(output.data());
        // More room than it can count is not needed.
        const std::size_t room = std::min(output.size(), std::size_t{1} << 30);
        stream.avail_out = static_cast<uInt>(room);
        int status = isUsable ? Z_OK : Z_MEM_ERROR;
        while (status == Z_OK && (stream.avail_in > 0 || !mayEnd) && stream.avail_out > 0) {
            skipPadding();
            if (padded && stream.avail_in > 0) {
                status = Z_DATA_ERROR;
            } else if (!padded) {
                status = inflateMember();
            }
        }
        if (status != Z_OK && status != Z_BUF_ERROR) {
            problem = stream.msg != nullptr ? stream.msg : zError(status);
        }
        return {input.size() - stream.avail_in, room - stream.avail_out};
    }

  private:
    // Tapes and disks fill their last block with zeros, which no member begins with.
    void skipPadding() {
        while (mayEnd && stream.avail_in > 0 && *stream.next_in == 0) {
            padded = true;
            ++stream.next_in;
            --stream.avail_in;
        }
    }

    int inflateMember() {
        const int status = inflate(&stream, Z_NO_FLUSH);
        mayEnd = status == Z_STREAM_END;
        return mayEnd ? inflateReset(&stream) : status;
    }

    z_stream stream = {};
    bool isUsable = false;
    bool padded = false;  // after the last member
};

class ZstdDecoder final : public Decoder {
  public:
    ZstdDecoder() : Decoder("zstd"), context(ZSTD_createDCtx()) {
        constexpr int kLargestWindow = 27;  // 128 MiB
        ZSTD_DCtx_setParameter(context, ZSTD_d_windowLogMax, kLargestWindow);
    }
    ~ZstdDecoder() override { ZSTD_freeDCtx(context); }

    Progress decode(std::string_view input, std::span<char> output) override {
        ZSTD_inBuffer in = {input.data(), input.size(), 0};
        ZSTD_outBuffer out = {output.data(), output.size(), 0};
        bool moved = true;
        while (moved && problem.empty() && (in.pos < input.size() || !mayEnd) && out.pos < out.size) {
            in.size = std::min(in.pos + wanted, input.size());
            const std::size_t before = in.pos + out.pos;
            const std::size_t status = ZSTD_decompressStream(context, &out, &in);
            moved = in.pos + out.pos > before;
            mayEnd = status == 0;
            if (ZSTD_isError(status) != 0) {
                problem = ZSTD_getErrorName(status);
            }
            wanted = status > kBlockHeader ? status - kBlockHeader : std::max<std::size_t>(status, 1);
        }
        return {in.pos, out.pos};
    }

  private:
    ZSTD_DCtx* const context;
    // A call that finds damage hands out nothing, so each is given one block, as what it returns allows to tell: the
    // size of the block and of the header of the next one.
    static constexpr std::size_t kBlockHeader = 3;
    std::size_t wanted = 1;
};

bool begins(std::string_view head, std::string_view magic) {
    return head.substr(0, magic.size()) == magic.substr(0, head.size());
}

bool beginsZstd(std::string_view head) {
    std::array<char, kMagicSize> first{};
    head.copy(first.data(), first.size());
    first[0] = static_cast<char>(first[0] & 0xF0);
    return begins(head, kZstdMagic) || begins({first.data(), head.size()}, kSkippableMagic);
}

// Returns null if a stream that begins like that is not compressed. REQUIRES: these are kMagicSize bytes, or all there
// are.
std::unique_ptr<Decoder> decoderFor(std::string_view head) {
    if (head.size() >= kGzipMagic.size() && begins(head, kGzipMagic)) {
        return std::make_unique<GzipDecoder>();
    }
    if (head.size() == kMagicSize && beginsZstd(head)) {
        return std::make_unique<ZstdDecoder>();
    }
    return nullptr;
}

}  // namespace

bool mayBeCompressed(std::string_view head) {
    return begins(head, kGzipMagic) || beginsZstd(head);
}

ByteSource::ByteSource(int source) : descriptor(source) {}

ByteSource::~ByteSource() = default;

ssize_t ByteSource::read(char* to, std::size_t size) {
    if (!begun && readHead() < 0) {
        return -1;
    }
    if (decoder) {
        return readDecoded(to, size);
    }
    if (taken == input.size()) {
        return readRaw(to, size);
    }
    const std::size_t copied = input.copy(to, size, taken);
    taken += copied;
    return static_cast<ssize_t>(copied);
}

bool ByteSource::isReady() const {
    return begun && (taken < input.size() || mayGoOn);
}

ssize_t ByteSource::readRaw(char* to, std::size_t size) {
    // A terminal that has reported its end would wait for another one.
    const ssize_t got = ended ? 0 : ::read(descriptor, to, size);
    ended = got == 0;
    total += static_cast<std::uint64_t>(std::max<ssize_t>(got, 0));
    return got;
}

ssize_t ByteSource::readHead() {
    char piece[kMagicSize];
    const ssize_t got = readRaw(piece, kMagicSize - input.size());
    if (got < 0) {
        return got;
    }
    input.append(piece, static_cast<std::size_t>(got));
    if (!ended && input.size() < kMagicSize && mayBeCompressed(input)) {
        errno = EAGAIN;
        return -1;
    }
    begun = true;
    decoder = decoderFor(input);
    return got;
}

ssize_t ByteSource::readDecoded(char* to, std::size_t size) {
    if (!isReady()) {
        input.resize(kPieceSize);
        const ssize_t got = readRaw(input.data(), input.size());
        input.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        taken = 0;
        if (got < 0) {
            return got;
        }
        if (ended) {
            return decoder->mayEnd ? 0 : fail("truncated");
        }
    }
    const auto [consumed, produced] = decoder->decode(std::string_view(input).substr(taken), {to, size});
    taken += consumed;
    // What came before the damage is good, and the decoder finds the damage again.
    const bool isIntact = decoder->problem.empty();
    mayGoOn = !isIntact || produced == size;
    if (produced == 0 && !isIntact) {
        return fail("corrupt (" + decoder->problem + ")");
    }
    if (produced == 0) {
        errno = EAGAIN;
        return -1;
    }
    return static_cast<ssize_t>(produced);
}

ssize_t ByteSource::fail(const std::string& why) {
    whyCorrupt = "the " + std::string(decoder->format) + " data is " + why;
    errno = EBADMSG;
    return -1;
}

}  // namespace Brenta::OS::VIG::Tool
