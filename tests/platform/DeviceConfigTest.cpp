#include <deviceconfig/DeviceConfig.h>
#include <gtest/gtest.h>
#include <host/DeviceConfigFiles.h>

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

TEST(DeviceConfig, EveryWayOfChangingTheFileIsNoticed) {
    const struct {
        std::string before;
        std::string change;
        std::string after;
    } cases[] = {
        {"printf old >a/b/rules", "printf new >a/b/rules", "new"},
        {"printf old >a/b/rules", "printf new >x; mv x a/b/rules", "new"},
        {"", "printf new >a/b/rules", "new"},
        {"", ": >a/b/rules", ""},
        {"printf new >x", "ln x a/b/rules", "new"},
        {"printf new >x", "ln -s ../../x a/b/rules", "new"},
        {"printf old >a/b/rules", "rm a/b/rules", kAbsent},
        {"printf old >a/b/rules", "mv a/b/rules x", kAbsent},
        {"rm -r a", "mkdir -p a/b; printf new >a/b/rules", "new"},
        {"printf old >a/b/rules", "rm -r a; mkdir -p a/b; printf new >a/b/rules", "new"},
        {"printf old >a/b/rules; mkdir -p x/b; printf new >x/b/rules", "mv a previous; mv x a", "new"},
        {"printf old >a/b/rules", "mv a x", kAbsent},
        {"mkdir -p real/x; printf old >real/x/file; ln -s $PWD/real link; ln -s ../.././link/x//file a/b/rules",
         "printf new >real/x/file", "new"},
        {"mkdir 1 2; printf old >1/file; printf new >2/file; ln -s 1 current; ln -s ../../current/file a/b/rules",
         "ln -s 2 next; mv -T next current", "new"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.change);
        const support::TemporaryFolder folder;
        const auto run = [&](const std::string& script) {
            EXPECT_EQ(std::system(("cd '" + folder.path().string() + "' && { " + script + "\n}").c_str()), 0);
        };
        run("mkdir -p a/b; " + each.before);
        host::bindProperty(testNamespace(), kProperty, folder.path("a/b/rules"));
        const auto recorder = std::make_shared<Recorder>();
        DeviceConfig client;
        client.addOnPropertiesChangeListener(testNamespace(), recorder);
        run(each.change);
        EXPECT_TRUE(recorder->sees(each.after));
        // Whatever the first change was, the way is still watched afterwards.
        run("mkdir -p a/b; printf last >next; mv -T next a/b/rules");
        EXPECT_TRUE(recorder->sees("last"));
    }
}

TEST(DeviceConfig, OnlyTheFileItselfIsReportedAndOnlyWhenComplete) {
    const support::TemporaryFolder folder;
    host::bindProperty(testNamespace(), kProperty, folder.path("later/rules.json"));
    host::bindProperty("barrier", kProperty, folder.path("barrier"));
    const auto recorder = std::make_shared<Recorder>();
    DeviceConfig client;
    client.addOnPropertiesChangeListener(testNamespace(), recorder);
    // Events are in order, so that earlier ones are dealt with once that of another file is.
    const auto barrier = std::make_shared<Recorder>();
    client.addOnPropertiesChangeListener("barrier", barrier);
    write(folder.path("other"), "text");
    fs::create_directory(folder.path("later"));
    write(folder.path("barrier"), "1");
    EXPECT_TRUE(barrier->sees("1"));
    {
        std::ofstream file(folder.path("later/rules.json"));
        file << "first half" << std::flush;
        write(folder.path("barrier"), "2");
        EXPECT_TRUE(barrier->sees("2"));
        file << ", second half";
    }
    EXPECT_TRUE(recorder->sees("first half, second half"));
    EXPECT_EQ(recorder->values().size(), 1U);
}

TEST(DeviceConfig, UnboundPropertiesAreTheFilesOfTheEnvironmentsFolder) {
    const support::TemporaryFolder folder;
    const fs::path rules = folder.path("unbound") / kProperty;
    fs::create_directory(rules.parent_path());
    fs::create_directory(folder.path("sooner"));
    setenv("VIG_DEVICE_CONFIG", folder.path().c_str(), 1);
    DeviceConfig client;
    unsetenv("VIG_DEVICE_CONFIG");
    const auto recorder = std::make_shared<Recorder>();
    const auto barrier = std::make_shared<Recorder>();
    client.addOnPropertiesChangeListener("unbound", recorder);
    client.addOnPropertiesChangeListener("sooner", barrier);
    write(rules.parent_path() / ".rules.swp", "an editor's own");
    write(folder.path("sooner") / kProperty, "1");
    EXPECT_TRUE(barrier->sees("1"));
    writeByRename(rules, "text");
    EXPECT_TRUE(recorder->sees("text"));
    EXPECT_EQ(recorder->values().size(), 1U);
    EXPECT_TRUE(client.isDeviceConfigAvailable());
    EXPECT_EQ(valueNow(client, "unbound"), "text");
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

}  // namespace
