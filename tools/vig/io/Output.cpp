#include "tools/vig/io/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

namespace Brenta::OS::VIG::Tool {

namespace {
constexpr std::size_t kPieceSize = 1 << 16;

// Returns an errno value, or 0.
int writeAll(int descriptor, std::string_view rest) {
    while (!rest.empty()) {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // Somebody who shares the descriptor has made it non-blocking.
            pollfd writable = {descriptor, POLLOUT, 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace

Output::Output(int target) : Output([target](std::string_view text) { return writeAll(target, text); }) {}

Output::Output(Writer target) : writer(std::move(target)) {}

void Output::write(std::string_view text) {
    if (failed()) {
        return;
    }
    pending += text;
    if (pending.size() >= kPieceSize) {
        flush();
    }
}

void Output::flush() {
    if (hook && !pending.empty()) {
        hook();
    }
    if (!pending.empty() && !failed()) {
        error = writer(pending);
    }
    pending.clear();
}

void Output::beforeWriting(std::function<void()> newHook) {
    hook = std::move(newHook);
}

bool Output::readerIsGone() const {
    return error == EPIPE;
}

}  // namespace Brenta::OS::VIG::Tool
