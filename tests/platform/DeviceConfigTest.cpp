#include <deviceconfig/DeviceConfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/DeviceConfigFiles.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImpossibleThreads.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

using com::korvel::deviceconfig::DeviceConfig;
using com::korvel::deviceconfig::OnPropertiesChangeListener;
using com::korvel::deviceconfig::Properties;

const std::string kProperty = "rules";
const std::string kAbsent = "(absent)";

// Each test binds in a namespace of its own, because bindings last as long as the process.
std::string testNamespace() {
    return testing::UnitTest::GetInstance()->current_test_info()->name();
}

void write(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

void writeByRename(const fs::path& file, const std::string& content) {
    const fs::path written = file.parent_path() / ".new";
    write(written, content);
    fs::rename(written, file);
}

// Keeps the values that it is told.
class Recorder final : public OnPropertiesChangeListener {
  public:
    void onPropertiesChanged(Properties properties) override {
        {
            const std::lock_guard lock(mutex);
            seen.push_back(properties.getString(kProperty, kAbsent));
        }
        changed.notify_all();
        if (hook) {
            hook();
        }
    }

    // Whether the value is the latest one, now or soon.
    bool sees(const std::string& value) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(30), [&] { return !seen.empty() && seen.back() == value; });
    }

    std::vector<std::string> values() {
        const std::lock_guard lock(mutex);
        return seen;
    }

    std::function<void()> hook;  // called after each notification; set before the registration

  private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> seen;  // guarded by mutex
};

std::string valueNow(DeviceConfig& client, const std::string& ns) {
    return client.getProperties(ns, {kProperty}).getString(kProperty, kAbsent);
}

TEST(DeviceConfig, IsAvailableOnceTheFolderOfABoundFileExists) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("later/rules.json"));
    DeviceConfig client;
    EXPECT_FALSE(client.isDeviceConfigAvailable());
    fs::create_directory(folder.path("later"));
    EXPECT_TRUE(client.isDeviceConfigAvailable());
    EXPECT_EQ(valueNow(client, testNamespace()), kAbsent);
}

TEST(DeviceConfig, PropertyIsTheFileByteForByte) {
    const support::TemporaryFolder folder;
    std::string content(200'000, 'x');
    content[7] = '\0';
    content += "\r\n\xFF\n";
    write(folder.path("rules.json"), content);
    host::bindProperty(testNamespace(), kProperty, folder.path("rules.json"));
    fs::create_directory(folder.path("folder"));
    host::bindProperty(testNamespace(), "folder", folder.path("folder"));
    DeviceConfig client;
    const Properties properties = client.getProperties(testNamespace(), {kProperty, "folder", "unbound"});
    EXPECT_EQ(properties.getString(kProperty, kAbsent), content);
    EXPECT_EQ(properties.getString("folder", kAbsent), kAbsent);
    EXPECT_EQ(properties.getString("unbound", kAbsent), kAbsent);
    EXPECT_EQ(valueNow(client, "another namespace"), kAbsent);
}

TEST(DeviceConfig, NewBindingIsSeenByNewClients) {
    const support::TemporaryFolder folder;
    write(folder.path("old"), "old");
    write(folder.path("new"), "new");
    host::bindProperty(testNamespace(), kProperty, folder.path("old"));
    DeviceConfig before;
    host::bindProperty(testNamespace(), kProperty, folder.path("new"));
    DeviceConfig after;
    EXPECT_EQ(valueNow(before, testNamespace()), "old");
    EXPECT_EQ(valueNow(after, testNamespace()), "new");
}

TEST(DeviceConfig, EveryWayOfChangingTheFileIsNoticed) {
    using Step = void (*)(const fs::path& root);
    const struct {
        const char* way;
        Step before;
        Step change;
        std::string after;
    } cases[] = {
        {"written in place", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) { write(root / "a/b/rules.json", "new"); }, "new"},
        {"replaced by rename", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) { writeByRename(root / "a/b/rules.json", "new"); }, "new"},
        {"created", [](const fs::path&) {}, [](const fs::path& root) { write(root / "a/b/rules.json", "new"); }, "new"},
        {"created empty", [](const fs::path&) {}, [](const fs::path& root) { write(root / "a/b/rules.json", ""); }, ""},
        {"linked into place", [](const fs::path& root) { write(root / "elsewhere", "new"); },
         [](const fs::path& root) { fs::create_hard_link(root / "elsewhere", root / "a/b/rules.json"); }, "new"},
        {"linked symbolically", [](const fs::path& root) { write(root / "elsewhere", "new"); },
         [](const fs::path& root) { fs::create_symlink("../../elsewhere", root / "a/b/rules.json"); }, "new"},
        {"removed", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) { fs::remove(root / "a/b/rules.json"); }, kAbsent},
        {"moved away", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) { fs::rename(root / "a/b/rules.json", root / "elsewhere"); }, kAbsent},
        {"created with its folders", [](const fs::path& root) { fs::remove_all(root / "a"); },
         [](const fs::path& root) {
             fs::create_directories(root / "a/b");
             write(root / "a/b/rules.json", "new");
         },
         "new"},
        {"folder deleted and created again", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) {
             fs::remove_all(root / "a");
             fs::create_directories(root / "a/b");
             write(root / "a/b/rules.json", "new");
         },
         "new"},
        {"folder above exchanged",
         [](const fs::path& root) {
             write(root / "a/b/rules.json", "old");
             fs::create_directories(root / "next/b");
             write(root / "next/b/rules.json", "new");
         },
         [](const fs::path& root) {
             fs::rename(root / "a", root / "previous");
             fs::rename(root / "next", root / "a");
         },
         "new"},
        {"folder above moved away", [](const fs::path& root) { write(root / "a/b/rules.json", "old"); },
         [](const fs::path& root) { fs::rename(root / "a", root / "elsewhere"); }, kAbsent},
        {"written behind a symbolic link",
         [](const fs::path& root) {
             fs::create_directories(root / "real/folder");
             write(root / "real/folder/file", "old");
             fs::create_symlink(root / "real", root / "link");
             fs::create_symlink("../.././link/folder//file", root / "a/b/rules.json");
         },
         [](const fs::path& root) { write(root / "real/folder/file", "new"); }, "new"},
        {"link to its folder turned",
         [](const fs::path& root) {
             fs::create_directories(root / "1");
             fs::create_directories(root / "2");
             write(root / "1/file", "old");
             write(root / "2/file", "new");
             fs::create_symlink("1", root / "current");
             fs::create_symlink("../../current/file", root / "a/b/rules.json");
         },
         [](const fs::path& root) {
             fs::create_symlink("2", root / "next");
             fs::rename(root / "next", root / "current");
         },
         "new"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.way);
        const support::TemporaryFolder folder;
        fs::create_directories(folder.path("a/b"));
        each.before(folder.path());
        host::bindProperty(testNamespace(), kProperty, folder.path("a/b/rules.json"));
        const auto recorder = std::make_shared<Recorder>();
        DeviceConfig client;
        client.addOnPropertiesChangeListener(testNamespace(), recorder);
        each.change(folder.path());
        EXPECT_TRUE(recorder->sees(each.after));
        // Whatever the first change was, the way is still watched afterwards.
        fs::create_directories(folder.path("a/b"));
        writeByRename(folder.path("a/b/rules.json"), "last");
        EXPECT_TRUE(recorder->sees("last"));
    }
}

// Reports in the order of the events, so what is seen of one file tells that earlier events are dealt with.
class Barrier {
  public:
    Barrier(DeviceConfig& client, const std::string& ns, fs::path file) : path(std::move(file)) {
        client.addOnPropertiesChangeListener(ns, recorder);
    }

    bool pass() {
        write(path, std::to_string(++count));
        return recorder->sees(std::to_string(count));
    }

  private:
    const fs::path path;
    const std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    int count = 0;
};

TEST(DeviceConfig, OnlyTheFileItselfIsReportedAndOnlyWhenComplete) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("later/rules.json"));
    host::bindProperty("barrier", kProperty, folder.path("barrier"));
    const auto recorder = std::make_shared<Recorder>();
    DeviceConfig client;
    client.addOnPropertiesChangeListener(testNamespace(), recorder);
    Barrier barrier(client, "barrier", folder.path("barrier"));
    write(folder.path("other"), "text");
    fs::create_directory(folder.path("later"));
    EXPECT_TRUE(barrier.pass());
    {
        std::ofstream file(folder.path("later/rules.json"));
        file << "first half" << std::flush;
        EXPECT_TRUE(barrier.pass());
        file << ", second half";
    }
    EXPECT_TRUE(recorder->sees("first half, second half"));
    EXPECT_EQ(recorder->values().size(), 1U);
}

TEST(DeviceConfig, UnboundPropertiesAreTheFilesOfTheEnvironmentsFolder) {
    const support::TemporaryFolder folder;
    const fs::path config = folder.path("config");
    fs::create_directories(config / "unbound");
    fs::create_directories(config / "bound");
    host::bindProperty("bound", kProperty, folder.path("bound"));
    setenv("VIG_DEVICE_CONFIG", config.c_str(), 1);
    DeviceConfig client;
    unsetenv("VIG_DEVICE_CONFIG");
    DeviceConfig without;
    const auto recorder = std::make_shared<Recorder>();
    client.addOnPropertiesChangeListener("unbound", recorder);
    Barrier barrier(client, "bound", folder.path("bound"));

    write(config / "unbound" / ".rules.swp", "an editor's own");
    write(config / "bound" / kProperty, "in vain");
    EXPECT_TRUE(barrier.pass());
    writeByRename(config / "unbound" / kProperty, "text");
    EXPECT_TRUE(recorder->sees("text"));
    EXPECT_EQ(recorder->values().size(), 1U);
    EXPECT_TRUE(client.isDeviceConfigAvailable());
    EXPECT_EQ(valueNow(client, "unbound"), "text");
    EXPECT_EQ(valueNow(client, "bound"), "1");
    EXPECT_EQ(valueNow(without, "unbound"), kAbsent);
}

TEST(DeviceConfig, ListenerRemovedInItsOwnNotificationIsNotCalledAgain) {
    const support::TemporaryFolder folder;
    const fs::path file = folder.path("rules.json");
    host::bindProperty(testNamespace(), kProperty, file);
    DeviceConfig client;
    const auto once = std::make_shared<Recorder>();
    const auto neighbour = std::make_shared<Recorder>();
    const auto always = std::make_shared<Recorder>();
    once->hook = [&, self = once.get()] {
        client.removeOnPropertiesChangeListener(self->shared_from_this());
        client.removeOnPropertiesChangeListener(neighbour);
    };
    for (const auto& recorder : {once, neighbour, always}) {
        client.addOnPropertiesChangeListener(testNamespace(), recorder);
    }
    write(file, "first");
    EXPECT_TRUE(always->sees("first"));
    write(file, "second");
    EXPECT_TRUE(always->sees("second"));
    EXPECT_EQ(once->values(), std::vector<std::string>{"first"});
    EXPECT_TRUE(neighbour->values().empty());
    EXPECT_EQ(neighbour.use_count(), 1);
}

TEST(DeviceConfig, RemovalDoesNotWaitForANotificationUnderWay) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("rules.json"));
    std::promise<void> entered;
    std::promise<void> removed;
    const auto recorder = std::make_shared<Recorder>();
    recorder->hook = [&] {
        entered.set_value();
        removed.get_future().wait();
    };
    DeviceConfig client;
    client.addOnPropertiesChangeListener(testNamespace(), recorder);
    write(folder.path("rules.json"), "text");
    entered.get_future().wait();
    client.removeOnPropertiesChangeListener(recorder);
    removed.set_value();
}

TEST(DeviceConfig, ClientMayBeDestroyedInANotification) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("rules.json"));
    auto client = std::make_unique<DeviceConfig>();
    // Shared, because the thread may still be on its way out of it when the test ends.
    const auto destroyed = std::make_shared<std::promise<void>>();
    const auto recorder = std::make_shared<Recorder>();
    recorder->hook = [&client, destroyed] {
        client.reset();
        destroyed->set_value();
    };
    client->addOnPropertiesChangeListener(testNamespace(), recorder);
    write(folder.path("rules.json"), "text");
    EXPECT_EQ(destroyed->get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

TEST(DeviceConfig, LastStateIsReportedThoughTheQueueOfEventsOverflowed) {
    const support::TemporaryFolder folder;
    const fs::path file = folder.path("rules.json");
    host::bindProperty(testNamespace(), kProperty, file);
    std::promise<void> entered;
    std::promise<void> flooded;
    const auto recorder = std::make_shared<Recorder>();
    recorder->hook = [&, first = true]() mutable {
        if (std::exchange(first, false)) {
            entered.set_value();
            flooded.get_future().wait();
        }
    };
    DeviceConfig client;
    client.addOnPropertiesChangeListener(testNamespace(), recorder);
    write(file, "first");
    entered.get_future().wait();
    for (int i = 0; i < 9'000; ++i) {
        fs::create_symlink("nowhere", folder.path("other"));
        fs::remove(folder.path("other"));
    }
    write(file, "last");
    flooded.set_value();
    EXPECT_TRUE(recorder->sees("last"));
}

TEST(DeviceConfig, WithoutAWatcherOrAThreadALineSaysSoAndTheNextRegistrationWorks) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("rules.json"));
    const support::LogCapture log;
    const auto first = std::make_shared<Recorder>();
    const auto third = std::make_shared<Recorder>();
    DeviceConfig client;
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    const int nextFile = dup(STDERR_FILENO);
    close(nextFile);
    const rlimit noMore = {static_cast<rlim_t>(nextFile), files.rlim_max};
    setrlimit(RLIMIT_NOFILE, &noMore);
    client.addOnPropertiesChangeListener(testNamespace(), first);
    setrlimit(RLIMIT_NOFILE, &files);
    {
        const support::ImpossibleThreads impossible;
        client.addOnPropertiesChangeListener(testNamespace(), std::make_shared<Recorder>());
    }
    client.addOnPropertiesChangeListener(testNamespace(), third);
    write(folder.path("rules.json"), "new");
    EXPECT_TRUE(first->sees("new"));
    EXPECT_TRUE(third->sees("new"));
    EXPECT_THAT(log.messages(), testing::ElementsAre("Changes of files go unnoticed: Too many open files.",
                                                     testing::StartsWith("Changes of files go unnoticed: ")));
}

}  // namespace
