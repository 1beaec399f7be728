#include "tools/vig/FileText.h"

#include <fcntl.h>
#include <host/TrustedFile.h>
#include <unistd.h>

#include <cerrno>

#include "tools/vig/Descriptor.h"
#include "tools/vig/RuleDocument.h"
#include "tools/vig/Text.h"

namespace tool {

std::string whyNotOpened(int error) {
    return error == EPERM ? "a symbolic link leads to it out of a folder that others can write" : systemError(error);
}

std::optional<std::string> readFile(const std::string& path, std::string& problem) {
    problem = RuleDocument::whyUnreadable(path);
    if (!problem.empty()) {
        return std::nullopt;
    }
    const Descriptor file(host::openTrusted(path, O_RDONLY, 0));
    std::string text;
    char piece[1 << 16];
    ssize_t got = file.isOpen() ? 1 : -1;
    while (got > 0) {
        got = read(file.get(), piece, sizeof piece);
        if (got > 0) {
            text.append(piece, static_cast<std::size_t>(got));
        } else if (got < 0 && errno == EINTR) {
            got = 1;
        }
    }
    if (got < 0) {
        problem = whyNotOpened(errno);
        return std::nullopt;
    }
    return text;
}

}  // namespace tool
