#include "tools/vig/FileText.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tools/vig/Descriptor.h"
#include "tools/vig/RuleDocument.h"
#include "tools/vig/Text.h"

namespace tool {

std::optional<std::string> readFile(const std::string& path, std::string& problem) {
    problem = RuleDocument::whyUnreadable(path);
    if (!problem.empty()) {
        return std::nullopt;
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
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
        problem = systemError(errno);
        return std::nullopt;
    }
    return text;
}

}  // namespace tool
