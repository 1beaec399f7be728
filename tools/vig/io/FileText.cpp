#include "tools/vig/io/FileText.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tools/vig/io/Output.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns an errno value, 0 if all of it is there.
int writeAll(const Descriptor& file, std::string_view text) {
    Output copy(file.get());
    copy.write(text);
    copy.flush();
    return copy.failure();
}

}  // namespace

bool isStandardInput(const std::string& path) {
    return path == "-";
}

std::string nameOfInput(const std::string& path) {
    return isStandardInput(path) ? "<stdin>" : path;
}

bool hasStandardInputTwice(const std::vector<std::string>& paths) {
    return std::ranges::count(paths, "-") > 1;
}

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
    problem = isStandardInput(path) ? "" : whyUnreadable(path);
    if (!problem.empty()) {
        return std::nullopt;
    }
    const Descriptor file(isStandardInput(path) ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                                : open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) {
        problem = systemError(errno);
        return std::nullopt;
    }
    std::string text;
    char piece[1 << 16];
    while (!interruption.requested()) {
        // Standard input is left as it is, so that its reading would wait.
        pollfd sources[] = {{file.get(), POLLIN, 0}, {interruption.descriptor(), POLLIN, 0}};
        if (poll(sources, 2, -1) < 0 || sources[0].revents == 0) {
            continue;
        }
        const ssize_t got = read(file.get(), piece, sizeof piece);
        if (got == 0) {
            return text;
        }
        if (got > 0) {
            text.append(piece, static_cast<std::size_t>(got));
        } else if (errno != EAGAIN && errno != EINTR) {
            problem = systemError(errno);
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<Descriptor> copyInMemory(const std::string& path, const Interruption& interruption,
                                       std::string& problem) {
    const auto text = readFile(path, interruption, problem);
    return text ? fileInMemory(*text, problem) : std::nullopt;
}

std::optional<Descriptor> fileInMemory(std::string_view text, std::string& problem) {
    Descriptor file(memfd_create("rules", MFD_CLOEXEC));
    const int error = file.isOpen() ? writeAll(file, text) : errno;
    problem = error != 0 ? systemError(error) : "";
    return error != 0 ? std::nullopt : std::optional(std::move(file));
}

std::string replaceFile(const std::string& path, std::string_view text) {
    // A link stays one.
    std::error_code ignored;
    const std::string target = std::filesystem::weakly_canonical(path, ignored).string();
    struct stat status = {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    if (isThere && !S_ISREG(status.st_mode)) {
        return "not a regular file";
    }
    std::string beside = target + ".XXXXXX";
    const Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (!file.isOpen()) {
        return systemError(errno);
    }
    const mode_t mask = umask(0);
    umask(mask);
    int error = writeAll(file, text);
    if (error == 0 && (fchmod(file.get(), isThere ? status.st_mode : 0666 & ~mask) != 0 || fsync(file.get()) != 0 ||
                       rename(beside.c_str(), target.c_str()) != 0)) {
        error = errno;
    }
    if (error != 0) {
        unlink(beside.c_str());
    }
    return error == 0 ? std::string() : systemError(error);
}

std::string pathOf(const Descriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

}  // namespace Brenta::OS::VIG::Tool
