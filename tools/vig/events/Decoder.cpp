#include "tools/vig/events/Decoder.h"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kGzipMagic("\x1F\x8B", 2);
constexpr std::string_view kZstdMagic("\x28\xB5\x2F\xFD", kMagicSize);
// A zstd file may begin with a frame of something else, which its magic number allows to skip: 0x184D2A50 to …5F.
constexpr std::string_view kSkippableMagic("\x50\x2A\x4D\x18", kMagicSize);

class GzipDecoder final : public Decoder {
  public:
    GzipDecoder() {
        constexpr int kOnlyGzip = 16;
        isUsable = inflateInit2(&stream, MAX_WBITS + kOnlyGzip) == Z_OK;
    }
    ~GzipDecoder() override { inflateEnd(&stream); }

    bool decode(std::string_view input, std::span<char> output, Progress& progress) override {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = reinterpret_cast<Bytef*>(output.data());
        // More room than it can count is not needed.
        const std::size_t room = std::min(output.size(), std::size_t{1} << 30);
        stream.avail_out = static_cast<uInt>(room);
        int status = isUsable ? Z_OK : Z_MEM_ERROR;
        while (status == Z_OK && (stream.avail_in > 0 || !betweenMembers) && stream.avail_out > 0) {
            skipPadding();
            if (padded && stream.avail_in > 0) {
                status = Z_DATA_ERROR;
            } else if (!padded) {
                status = inflateMember();
            }
        }
        progress = {input.size() - stream.avail_in, room - stream.avail_out};
        if (status != Z_OK && status != Z_BUF_ERROR) {
            whyCorrupt = stream.msg != nullptr ? stream.msg : zError(status);
        }
        return whyCorrupt.empty();
    }

    bool isComplete() const override { return betweenMembers; }
    std::string_view format() const override { return "gzip"; }

  private:
    // Tapes and disks fill their last block with zeros, which no member begins with.
    void skipPadding() {
        while (betweenMembers && stream.avail_in > 0 && *stream.next_in == 0) {
            padded = true;
            ++stream.next_in;
            --stream.avail_in;
        }
    }

    int inflateMember() {
        const int status = inflate(&stream, Z_NO_FLUSH);
        betweenMembers = status == Z_STREAM_END;
        return betweenMembers ? inflateReset(&stream) : status;
    }

    z_stream stream = {};
    bool isUsable = false;
    bool betweenMembers = false;  // so many of which may follow each other
    bool padded = false;          // after the last one
};

class ZstdDecoder final : public Decoder {
  public:
    ZstdDecoder() : context(ZSTD_createDCtx()) {
        constexpr int kLargestWindow = 27;  // 128 MiB
        ZSTD_DCtx_setParameter(context, ZSTD_d_windowLogMax, kLargestWindow);
    }
    ~ZstdDecoder() override { ZSTD_freeDCtx(context); }

    bool decode(std::string_view input, std::span<char> output, Progress& progress) override {
        ZSTD_inBuffer in = {input.data(), input.size(), 0};
        ZSTD_outBuffer out = {output.data(), output.size(), 0};
        bool moved = true;
        while (moved && whyCorrupt.empty() && (in.pos < input.size() || !betweenFrames) && out.pos < out.size) {
            in.size = std::min(in.pos + wanted, input.size());
            const std::size_t before = in.pos + out.pos;
            const std::size_t status = ZSTD_decompressStream(context, &out, &in);
            moved = in.pos + out.pos > before;
            betweenFrames = status == 0;
            if (ZSTD_isError(status) != 0) {
                whyCorrupt = ZSTD_getErrorName(status);
            }
            wanted = status > kBlockHeader ? status - kBlockHeader : std::max<std::size_t>(status, 1);
        }
        progress = {in.pos, out.pos};
        return whyCorrupt.empty();
    }

    bool isComplete() const override { return betweenFrames; }
    std::string_view format() const override { return "zstd"; }

  private:
    ZSTD_DCtx* const context;
    bool betweenFrames = false;
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

}  // namespace

bool mayBeCompressed(std::string_view head) {
    return begins(head, kGzipMagic) || beginsZstd(head);
}

std::unique_ptr<Decoder> decoderFor(std::string_view head) {
    if (head.size() >= kGzipMagic.size() && begins(head, kGzipMagic)) {
        return std::make_unique<GzipDecoder>();
    }
    if (head.size() == kMagicSize && beginsZstd(head)) {
        return std::make_unique<ZstdDecoder>();
    }
    return nullptr;
}

}  // namespace Brenta::OS::VIG::Tool
