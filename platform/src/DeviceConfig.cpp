#include <deviceconfig/DeviceConfig.h>
#include <pthread.h>

#include <algorithm>
#include <cassert>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "PathWatcher.h"
#include "PropertyFiles.h"

namespace com::korvel::deviceconfig {

using Listener = std::shared_ptr<OnPropertiesChangeListener>;

// What a client and its thread share.
class DeviceConfig::Impl : public std::enable_shared_from_this<Impl> {
  public:
    const host::PropertyFiles files = host::PropertyFiles::snapshot();

    void add(const std::string& ns, const Listener& listener);
    void remove(const Listener& listener);

    // Ends the thread, and waits for that where it can.
    void stop();

  private:
    struct Registration {
        std::string ns;
        Listener listener;

        bool operator==(const Registration&) const = default;
    };

    void startThread();
    void run();
    void rewatch();
    void notify(const std::string& ns, host::PathWatcher::Change change);
    std::vector<Registration> currentRegistrations();
    bool isCurrent(const Registration& registration);

    std::mutex mutex;
    std::vector<Registration> registrations;   // guarded by mutex
    std::optional<host::PathWatcher> watcher;  // guarded by mutex but for wait(); absent until the first listener
    std::optional<pthread_t> thread;           // guarded by mutex until stop(); absent if there is none
    bool stopped = false;                      // guarded by mutex
};

void DeviceConfig::Impl::add(const std::string& ns, const Listener& listener) {
    assert(listener != nullptr);
    const std::lock_guard lock(mutex);
    registrations.push_back({ns, listener});
    if (!thread) {
        watcher.emplace();
        if (watcher->works()) {
            startThread();
        }
    }
    rewatch();
}

void DeviceConfig::Impl::remove(const Listener& listener) {
    // Released without the lock, because a listener's destructor may use the client.
    std::vector<Registration> removed;
    const std::lock_guard lock(mutex);
    const auto kept = std::stable_partition(registrations.begin(), registrations.end(),
                                            [&](const Registration& each) { return each.listener != listener; });
    removed.assign(std::make_move_iterator(kept), std::make_move_iterator(registrations.end()));
    registrations.erase(kept, registrations.end());
}

void DeviceConfig::Impl::stop() {
    std::vector<Registration> removed;
    {
        const std::lock_guard lock(mutex);
        stopped = true;
        removed.swap(registrations);
        if (watcher) {
            watcher->wake();
        }
    }
    if (!thread) {
        return;
    }
    if (pthread_equal(*thread, pthread_self()) != 0) {
        pthread_detach(*thread);
    } else {
        pthread_join(*thread, nullptr);
    }
}

// Not by std::thread, which would end the process where it cannot throw.
void DeviceConfig::Impl::startThread() {
    auto self = std::make_unique<std::shared_ptr<Impl>>(shared_from_this());
    const auto body = [](void* argument) -> void* {
        const std::unique_ptr<std::shared_ptr<Impl>> owned(static_cast<std::shared_ptr<Impl>*>(argument));
        (*owned)->run();
        return nullptr;
    };
    pthread_t started{};
    if (const int error = pthread_create(&started, nullptr, body, self.get()); error == 0) {
        static_cast<void>(self.release());
        thread = started;
    } else {
        watcher->complain(error);
    }
}

void DeviceConfig::Impl::run() {
    while (true) {
        const auto events = watcher->wait();
        std::map<std::string, host::PathWatcher::Change> changes;
        {
            const std::lock_guard lock(mutex);
            if (stopped) {
                return;
            }
            changes = watcher->changesIn(events);
            if (!changes.empty()) {
                rewatch();
            }
        }
        for (const auto& [ns, change] : changes) {
            notify(ns, change);
        }
    }
}

// The ways to the files may be others now. Called with the mutex held.
void DeviceConfig::Impl::rewatch() {
    std::vector<host::PathWatcher::Watch> watches;
    for (const Registration& registration : registrations) {
        for (auto& path : files.paths(registration.ns)) {
            watches.push_back({std::move(path), registration.ns});
        }
    }
    watcher->replace(watches);
}

void DeviceConfig::Impl::notify(const std::string& ns, host::PathWatcher::Change change) {
    const auto values = files.read(ns, files.names(ns));
    if (values.empty() && change == host::PathWatcher::Change::FolderAppeared) {
        return;
    }
    for (const Registration& registration : currentRegistrations()) {
        // Asked anew for each, as any listener before may have removed it.
        if (registration.ns == ns && isCurrent(registration)) {
            registration.listener->onPropertiesChanged(Properties(ns, values));
        }
    }
}

std::vector<DeviceConfig::Impl::Registration> DeviceConfig::Impl::currentRegistrations() {
    const std::lock_guard lock(mutex);
    return registrations;
}

bool DeviceConfig::Impl::isCurrent(const Registration& registration) {
    const std::lock_guard lock(mutex);
    return std::find(registrations.begin(), registrations.end(), registration) != registrations.end();
}

Properties::Properties(std::string namespaceName, std::map<std::string, std::string> valuesByName)
    : ns(std::move(namespaceName)), values(std::move(valuesByName)) {}

const std::string& Properties::getNamespace() const {
    return ns;
}

std::string Properties::getString(const std::string& name, const std::string& fallback) const {
    const auto value = values.find(name);
    return value != values.end() ? value->second : fallback;
}

DeviceConfig::DeviceConfig() : impl(std::make_shared<Impl>()) {}

DeviceConfig::~DeviceConfig() {
    impl->stop();
}

bool DeviceConfig::isDeviceConfigAvailable() {
    return impl->files.available();
}

Properties DeviceConfig::getProperties(const std::string& ns, std::initializer_list<std::string> names) {
    return Properties(ns, impl->files.read(ns, names));
}

void DeviceConfig::addOnPropertiesChangeListener(const std::string& ns,
                                                 const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    impl->add(ns, listener);
}

void DeviceConfig::removeOnPropertiesChangeListener(const std::shared_ptr<OnPropertiesChangeListener>& listener) {
    impl->remove(listener);
}

}  // namespace com::korvel::deviceconfig
