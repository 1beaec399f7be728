#include "PathWatcher.h"

#include <android/log.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <system_error>

#include "PropertyFiles.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr int kMaxLinks = 40;  // as the kernel

}  // namespace

PathWatcher::PathWatcher()
    : notifier(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)), waker(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!works()) {
        complain(errno);
    }
}

PathWatcher::~PathWatcher() {
    close(notifier);
    close(waker);
}

bool PathWatcher::works() const {
    return notifier >= 0 && waker >= 0;
}

std::vector<PathWatcher::Event> PathWatcher::wait() {
    std::array<pollfd, 2> sources = {pollfd{notifier, POLLIN, 0}, pollfd{waker, POLLIN, 0}};
    poll(sources.data(), sources.size(), -1);

    std::uint64_t wakes = 0;
    [[maybe_unused]] const ssize_t woken = read(waker, &wakes, sizeof wakes);

    std::vector<Event> events;
    alignas(inotify_event) std::array<char, 16384> buffer;
    const ssize_t filled = read(notifier, buffer.data(), buffer.size());
    for (ssize_t offset = 0; offset < filled;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
        events.push_back({event->wd, event->mask, event->len > 0 ? event->name : ""});
        offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
    return events;
}

void PathWatcher::wake() {
    constexpr std::uint64_t kOnce = 1;
    [[maybe_unused]] const ssize_t written = write(waker, &kOnce, sizeof kOnce);
}

// Each folder is watched before the name in it is looked at, so nothing that happens meanwhile is missed.
void PathWatcher::add(const Watch& watch) {
    fs::path folder;
    std::deque<fs::path> rest(watch.path.begin(), watch.path.end());
    for (int links = 0; !rest.empty() && links <= kMaxLinks;) {
        const fs::path name = std::move(rest.front());
        rest.pop_front();
        if (name.is_absolute()) {
            folder = name;
        } else if (name == "..") {
            folder = folder.parent_path();
        } else if (name != "." && (!name.empty() || rest.empty())) {
            const int descriptor = watchFolder(folder);
            if (descriptor >= 0) {
                keys[{descriptor, name}].insert(watch.key);
            } else if (errno != EACCES) {
                return;
            }
            std::error_code error;
            if (const fs::path target = fs::read_symlink(folder / name, error); !error) {
                rest.insert(rest.begin(), target.begin(), target.end());
                ++links;
            } else {
                folder /= name;
            }
        }
    }
}

void PathWatcher::replace(const std::vector<Watch>& watches) {
    const auto before = std::exchange(folders, {});
    keys.clear();
    for (const Watch& watch : watches) {
        add(watch);
    }
    for (const auto& [descriptor, folder] : before) {
        if (!folders.contains(descriptor)) {
            inotify_rm_watch(notifier, descriptor);
        }
    }
}

std::map<std::string, PathWatcher::Change> PathWatcher::changesIn(const std::vector<Event>& events) const {
    std::map<std::string, Change> changes;
    const auto note = [&](const std::pair<int, std::string>& place, Change change) {
        if (const auto concerned = keys.find(place); concerned != keys.end()) {
            for (const std::string& key : concerned->second) {
                Change& noted = changes.emplace(key, change).first->second;
                noted = std::max(noted, change);
            }
        }
    };
    for (const Event& event : events) {
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            for (const auto& [place, concerned] : keys) {
                note(place, Change::File);
            }
        } else if (const auto change = meaningOf(event)) {
            note({event.folder, event.name}, *change);
            if ((event.mask & IN_ISDIR) == 0 && !isEditorsOwn(event.name)) {
                note({event.folder, ""}, *change);
            }
        }
    }
    return changes;
}

std::optional<PathWatcher::Change> PathWatcher::meaningOf(const Event& event) const {
    if (event.name.empty()) {
        return std::nullopt;
    }
    if ((event.mask & IN_ISDIR) != 0) {
        if ((event.mask & (IN_CREATE | IN_MOVED_TO)) != 0) {
            return Change::FolderAppeared;
        }
        // A folder is empty by the time it is deleted; one that is moved away takes its files along.
        return (event.mask & IN_DELETE) != 0 ? std::nullopt : std::optional(Change::File);
    }
    const auto folder = folders.find(event.folder);
    if ((event.mask & IN_CREATE) != 0 && folder != folders.end()) {
        // A plain file has just been begun and is reported again when it is complete; a further link is complete.
        struct stat status = {};
        const bool isPlain = lstat((folder->second / event.name).c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
                             status.st_nlink == 1;
        // Linking an older file changes its status, not its content.
        if (isPlain && status.st_mtim.tv_sec == status.st_ctim.tv_sec &&
            status.st_mtim.tv_nsec == status.st_ctim.tv_nsec) {
            return std::nullopt;
        }
    }
    return Change::File;
}

int PathWatcher::watchFolder(const fs::path& folder) {
    const int descriptor = inotify_add_watch(notifier, folder.c_str(), kEvents | IN_ONLYDIR);
    if (descriptor >= 0) {
        folders[descriptor] = folder;
    } else if (errno != ENOENT && errno != ENOTDIR && errno != EACCES) {
        complain(errno);
    }
    return descriptor;
}

void PathWatcher::complain(int error) {
    if (!complained) {
        errno = error;
        __android_log_print(ANDROID_LOG_ERROR, "DeviceConfig", "Changes of files go unnoticed: %m.");
        complained = true;
    }
}

}  // namespace host
