#include "tools/vig/io/FileText.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::string whyUnreadable(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return systemError(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return systemError(EISDIR);
    }
    // A pipe that nobody writes to, or a device, could be read for ever.
    const std::string name = std::filesystem::path(path).lexically_normal();
    const bool isOfShell = S_ISFIFO(status.st_mode) && (name.starts_with("/dev/") || name.starts_with("/proc/"));
    if (!S_ISREG(status.st_mode) && !isOfShell) {
        return "not a regular file";
    }
    if (isOfShell) {
        return faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0 ? std::string() : systemError(errno);
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    char byte = 0;
    return file.isOpen() && pread(file.get(), &byte, 1, 0) >= 0 ? std::string() : systemError(errno);
}

std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem) {
    problem = whyUnreadable(path);
    if (!problem.empty()) {
        return std::nullopt;
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) {
        problem = systemError(errno);
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
            problem = systemError(errno);
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<Descriptor> copyInMemory(const std::string& path, const Interruption& interruption,
                                       std::string& problem) {
    const auto text = readFile(path, interruption, problem);
    if (!text) {
        return std::nullopt;
    }
    Descriptor file(memfd_create("rules", MFD_CLOEXEC));
    if (!file.isOpen()) {
        problem = systemError(errno);
        return std::nullopt;
    }
    Output copy(file.get());
    copy.write(*text);
    copy.flush();
    problem = copy.failed() ? systemError(copy.failure()) : "";
    return copy.failed() ? std::nullopt : std::optional(std::move(file));
}

std::string pathOf(const Descriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

}  // namespace Brenta::OS::VIG::Tool
