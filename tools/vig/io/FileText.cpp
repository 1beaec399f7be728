#include "tools/vig/io/FileText.h"

#include <fcntl.h>
#include <host/DeviceConfigFiles.h>
#include <host/TrustedFile.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

std::string whyNotOpened(int error) {
    return error == EPERM ? "a symbolic link leads to it out of a folder that others can write" : systemError(error);
}

std::string whyUnreadable(const std::string& path) {
    const Descriptor file(host::openTrusted(path, O_PATH, 0));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        return whyNotOpened(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return systemError(EISDIR);
    }
    if (!host::canBeProperty(path, status.st_mode)) {
        return "not a regular file";
    }
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        return systemError(errno);
    }
    // The device configuration is available when the folder can be read.
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (faccessat(AT_FDCWD, folder.empty() ? "." : folder.c_str(), R_OK | X_OK, AT_EACCESS) != 0) {
        return "its folder: " + systemError(errno);
    }
    return {};
}

std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem) {
    problem = whyUnreadable(path);
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
