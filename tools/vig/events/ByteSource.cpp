#include "tools/vig/events/ByteSource.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <string_view>
#include <utility>

#include "tools/vig/events/Decoder.h"

namespace Brenta::OS::VIG::Tool {

namespace {
constexpr std::size_t kPieceSize = std::size_t{1} << 16;
}  // namespace

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
            return decoder->isComplete() ? 0 : fail("truncated");
        }
    }
    Decoder::Progress progress{};
    const bool isIntact = decoder->decode(std::string_view(input).substr(taken), {to, size}, progress);
    taken += progress.taken;
    // What came before the damage is good, and the decoder finds the damage again.
    mayGoOn = !isIntact || progress.produced == size;
    if (progress.produced == 0 && !isIntact) {
        return fail("corrupt (" + decoder->problem() + ")");
    }
    if (progress.produced == 0) {
        errno = EAGAIN;
        return -1;
    }
    return static_cast<ssize_t>(progress.produced);
}

ssize_t ByteSource::fail(std::string why) {
    whyCorrupt = "the " + std::string(decoder->format()) + " data is " + std::move(why);
    errno = EBADMSG;
    return -1;
}

}  // namespace Brenta::OS::VIG::Tool
