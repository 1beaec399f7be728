#include "tools/vig/FileText.h"

#include <fcntl.h>
#include <host/TrustedFile.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "tools/vig/Descriptor.h"
#include "tools/vig/RuleDocument.h"
#include "tools/vig/Text.h"

namespace tool {

std::string whyNotOpened(int error) {
    return error == EPERM ? "a symbolic link leads to it out of a folder that others can write" : systemError(error);
}

std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem) {
    problem = RuleDocument::whyUnreadable(path);
    if (!problem.empty()) {
        return std::nullopt;
    }
    const Descriptor file(host::openTrusted(path, O_RDONLY | O_NONBLOCK, 0));
    if (!file.isOpen()) {
        problem = whyNotOpened(errno);
        return std::nullopt;
    }
    std::string text;
    char piece[1 << 16];
    while (!interruption.requested()) {
        const ssize_t got = read(file.get(), piece, sizeof piece);
        if (got == 0) {
            return text;
        }
        if (got > 0) {
            text.append(piece, static_cast<std::size_t>(got));
        } else if (errno == EAGAIN) {
            pollfd sources[] = {{file.get(), POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
            poll(sources, 2, -1);
        } else if (errno != EINTR) {
            problem = whyNotOpened(errno);
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace tool
