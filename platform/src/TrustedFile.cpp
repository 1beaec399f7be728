#include <fcntl.h>
#include <host/TrustedFile.h>
#include <limits.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr int kMostLinks = 40;  // as the kernel
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

// The folder that the walk has come to.
class Folder {
  public:
    explicit Folder(int opened) : descriptor(opened) {}
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { close(descriptor); }

    void enter(int opened) { close(std::exchange(descriptor, opened)); }

    // Empty if the name is no symbolic link. Those of /proc are not told: nobody can write there, and their text need
    // not be a path.
    std::optional<std::string> linkIn(const std::string& name) const {
        std::string target(PATH_MAX, '\0');
        const ssize_t length = readlinkat(descriptor, name.c_str(), target.data(), target.size());
        if (length < 0 || isOfKernel()) {
            return std::nullopt;
        }
        target.resize(static_cast<std::size_t>(length));
        return target;
    }

    bool isOfKernel() const {
        struct statfs system = {};
        return fstatfs(descriptor, &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
    }

    bool isWritableByOthers() const {
        struct stat status = {};
        return fstat(descriptor, &status) != 0 || (status.st_mode & S_IWOTH) != 0 ||
               ((status.st_mode & S_IWGRP) != 0 && status.st_gid != getegid()) ||
               (status.st_uid != 0 && status.st_uid != geteuid());
    }

    int descriptor;
};

bool leadsOut(const std::string& target) {
    return target.find('/') != std::string::npos || target == "..";
}

}  // namespace

// Name by name, each looked at before it is opened, and opened only if it is still no link.
int openTrusted(const fs::path& path, int flags, mode_t mode) {
    Folder folder(open(path.is_absolute() ? "/" : ".", kFolderFlags));
    std::deque<fs::path> rest(path.begin(), path.end());
    for (int links = 0; !rest.empty() && links <= kMostLinks;) {
        const std::string name = rest.front().empty() ? "." : rest.front().string();
        rest.pop_front();
        const bool keepsLink = rest.empty() && (flags & O_NOFOLLOW) != 0;
        if (const auto target = keepsLink ? std::nullopt : folder.linkIn(name)) {
            if (leadsOut(*target) && folder.isWritableByOthers()) {
                errno = EPERM;
                return -1;
            }
            const fs::path way(*target);
            rest.insert(rest.begin(), way.begin(), way.end());
            ++links;
            continue;
        }
        const int how = (rest.empty() ? flags | O_CLOEXEC : kFolderFlags) | (folder.isOfKernel() ? 0 : O_NOFOLLOW);
        const int opened = openat(folder.descriptor, name.c_str(), how, mode);
        if (rest.empty() || opened < 0) {
            return opened;
        }
        folder.enter(opened);
    }
    errno = rest.empty() ? ENOENT : ELOOP;
    return -1;
}

}  // namespace host
