#include <android/log.h>
#include <deviceconfig/DeviceConfig.h>
#include <fcntl.h>
#include <host/Host.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <vector>

// A change is found by reading: a client's thread reads the files of its listeners again and again, and tells of what
// is another text than before. However a file is saved, linked, moved, removed or made, and whatever folder on its way
// is exchanged, the next look sees it, and the system follows the links. A file in the midst of being written differs
// from one look to the next, and is told of once it does not: where the writer pauses for longer, half of it as well,
// and where it never rests, about once a second what it has come to.

namespace {

namespace fs = std::filesystem;

using com::korvel::deviceconfig::OnPropertiesChangeListener;

using Clock = std::chrono::steady_clock;
using Files = std::map<std::string, fs::path>;      // by namespace, slash and property
using Values = std::map<std::string, std::string>;  // by property
using Listener = std::shared_ptr<OnPropertiesChangeListener>;

constexpr Clock::duration kShortestPause = std::chrono::milliseconds(100);
// A file that never rests is told of as it is, each time after as many looks.
constexpr int kMostChanges = 10;

std::mutex boundMutex;
Files boundFiles;  // guarded by boundMutex

Files copyOfBoundFiles() {
    const std::lock_guard lock(boundMutex);
    return boundFiles;
}

bool isFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

std::optional<std::string> contentOf(const fs::path& path) {
    // The opening of a pipe would wait for somebody who writes to it.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        return std::nullopt;
    }
    struct stat status = {};
    const bool isReadable = fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
                            static_cast<std::size_t>(status.st_size) < host::kTooManyBytes;
    ssize_t got = isReadable ? 1 : -1;
    std::string content;
    std::array<char, 65536> buffer;
    while (got > 0 && content.size() < host::kTooManyBytes) {
        got = read(file, buffer.data(), buffer.size());
        content.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    close(file);
    return got == 0 ? std::optional(std::move(content)) : std::nullopt;
}

}  // namespace

void host::bindProperty(const std::string& ns, const std::string& property, const std::string& file) {
    std::error_code ignored;
    const std::lock_guard lock(boundMutex);
    boundFiles[ns + "/" + property] = fs::absolute(file, ignored);
}

namespace com::korvel::deviceconfig {

class DeviceConfig::Impl {
  public:
    Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    bool isAvailable() const;
    Values read(const std::string& ns) const;
    void add(const std::string& ns, const Listener& listener);
    void remove(const Listener& listener);

  private:
    struct Registration {
        const std::string ns;
        const Listener listener;
        // The thread alone uses them once they are set.
        Values told;
        Values seen;      // at the latest look
        int changes = 0;  // from one look to the next, without a rest between them
    };

    void startThread();
    Clock::duration look();
    std::vector<std::shared_ptr<Registration>> currentRegistrations();
    bool isCurrent(const std::shared_ptr<Registration>& registration);

    const Files bound = copyOfBoundFiles();
    fs::path folder;  // of the properties that are not bound; empty if there is none
    std::mutex mutex;
    std::vector<std::shared_ptr<Registration>> registrations;  // guarded by mutex
    std::atomic<bool> stopped = false;
    const int pauseEnder = eventfd(0, EFD_CLOEXEC);
    std::optional<pthread_t> thread;  // guarded by mutex
};

DeviceConfig::Impl::Impl() {
    if (const char* named = std::getenv("VIG_DEVICE_CONFIG")) {
        std::error_code ignored;
        folder = fs::absolute(named, ignored);
    }
}

DeviceConfig::Impl::~Impl() {
    if (thread) {
        stopped = true;
        eventfd_write(pauseEnder, 1);
        pthread_join(*thread, nullptr);
    }
    close(pauseEnder);
}

bool DeviceConfig::Impl::isAvailable() const {
    return isFolder(folder) ||
           std::ranges::any_of(bound, [](const auto& each) { return isFolder(each.second.parent_path()); });
}

Values DeviceConfig::Impl::read(const std::string& ns) const {
    Values values;
    const auto add = [&](const std::string& name, const fs::path& file) {
        if (auto content = contentOf(file)) {
            values.emplace(name, *std::move(content));
        }
    };
    const std::string prefix = ns + "/";
    for (const auto& [key, file] : bound) {
        if (key.starts_with(prefix)) {
            add(key.substr(prefix.size()), file);
        }
    }
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? folder : folder / ns, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        // A name with a dot before it is an editor's own.
        if (!name.starts_with('.') && !bound.contains(prefix + name)) {
            add(name, entry->path());
        }
    }
    return values;
}

void DeviceConfig::Impl::add(const std::string& ns, const Listener& listener) {
    assert(listener != nullptr);
    const Values values = read(ns);
    const std::lock_guard lock(mutex);
    registrations.push_back(std::make_shared<Registration>(Registration{ns, listener, values, values}));
    if (!thread) {
        startThread();
    }
}

void DeviceConfig::Impl::remove(const Listener& listener) {
    const std::lock_guard lock(mutex);
    std::erase_if(registrations, [&](const auto& each) { return each->listener == listener; });
}

// A std::thread would end the process where it cannot throw. The caller holds the mutex.
void DeviceConfig::Impl::startThread() {
    const auto body = [](void* argument) -> void* {
        Impl& self = *static_cast<Impl*>(argument);
        Clock::duration pause = kShortestPause;
        while (true) {
            pollfd ended = {self.pauseEnder, POLLIN, 0};
            if (poll(&ended, 1, static_cast<int>(pause / std::chrono::milliseconds(1))) > 0) {
                eventfd_t ignored = 0;
                eventfd_read(self.pauseEnder, &ignored);
            }
            // A fork of the process ends the pause, too, when it destroys its copy of the client.
            if (self.stopped) {
                return nullptr;
            }
            pause = self.look();
        }
    };
    pthread_t started{};
    errno = pauseEnder < 0 ? EMFILE : pthread_create(&started, nullptr, body, this);
    if (errno == 0) {
        thread = started;
    } else {
        __android_log_print(ANDROID_LOG_ERROR, "DeviceConfig", "Changes of files go unnoticed: %m.");
    }
}

// Returns how long to pause so that looks at large files take no more than a tenth of the time.
Clock::duration DeviceConfig::Impl::look() {
    Clock::duration reading{};
    for (const auto& each : currentRegistrations()) {
        const auto begin = Clock::now();
        Values values = read(each->ns);
        reading += Clock::now() - begin;
        each->changes = values == each->seen ? 0 : each->changes + 1;
        const bool isDue = each->changes % kMostChanges == 0;
        each->seen = std::move(values);
        // It is asked anew for each, as any listener before may have removed it.
        if (isDue && each->seen != each->told && isCurrent(each)) {
            each->told = each->seen;
            each->listener->onPropertiesChanged(Properties(each->told));
        }
    }
    return std::max(kShortestPause, 9 * reading);
}

std::vector<std::shared_ptr<DeviceConfig::Impl::Registration>> DeviceConfig::Impl::currentRegistrations() {
    const std::lock_guard lock(mutex);
    return registrations;
}

bool DeviceConfig::Impl::isCurrent(const std::shared_ptr<Registration>& registration) {
    const std::lock_guard lock(mutex);
    return std::ranges::find(registrations, registration) != registrations.end();
}

DeviceConfig::DeviceConfig() : impl(std::make_unique<Impl>()) {}

DeviceConfig::~DeviceConfig() = default;

bool DeviceConfig::isDeviceConfigAvailable() {
    return impl->isAvailable();
}

Properties DeviceConfig::getProperties(const std::string& ns, std::initializer_list<std::string> names) {
    Values values = impl->read(ns);
    std::erase_if(values, [&](const auto& each) { return std::ranges::find(names, each.first) == names.end(); });
    return Properties(std::move(values));
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& ns, const Listener& listener) {
    impl->add(ns, listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const Listener& listener) {
    impl->remove(listener);
}

}  // namespace com::korvel::deviceconfig
