#include <deviceconfig/DeviceConfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <host/Host.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/ImpossibleThreads.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using com::korvel::deviceconfig::DeviceConfig;
using com::korvel::deviceconfig::OnPropertiesChangeListener;
using com::korvel::deviceconfig::Properties;
using testing::ElementsAre;
using testing::IsEmpty;

const int pauseBegun = eventfd(0, EFD_CLOEXEC | EFD_SEMAPHORE);
const int pauseEnded = eventfd(0, EFD_CLOEXEC | EFD_SEMAPHORE);

void signal(int event) {
    const std::uint64_t once = 1;
    ASSERT_EQ(write(event, &once, sizeof once), 8);
}

void await(int event) {
    std::uint64_t times = 0;
    ASSERT_EQ(read(event, &times, sizeof times), 8);
}

}  // namespace

// Stands before the C library's, so that a client's thread looks at its files when the test says so.
extern "C" __attribute__((visibility("default"))) int poll(pollfd* stopped, nfds_t /*count*/, int /*atMost*/) {
    signal(pauseBegun);
    pollfd sources[] = {*stopped, {pauseEnded, POLLIN, 0}};
    ppoll(sources, 2, nullptr, nullptr);
    if (sources[0].revents != 0) {
        return 1;
    }
    await(pauseEnded);
    return 0;
}

namespace {

// Keeps the values that it is told.
struct Recorder final : OnPropertiesChangeListener {
    void onPropertiesChanged(Properties properties) override {
        values.push_back(properties.getString("rules", "(absent)"));
        hook();
    }

    std::vector<std::string> values;
    std::function<void()> hook = [] {};
};

// A client with a listener for the property of the namespace, whose file need not be bound.
struct Watch {
    explicit Watch(const std::string& ns) {
        client.addOnPropertiesChangeListener(ns, recorder);
        await(pauseBegun);
    }

    void look() {
        signal(pauseEnded);
        await(pauseBegun);
    }

    // Returns what is told once nothing changes any more from one look to the next.
    std::vector<std::string> told() {
        look();
        EXPECT_THAT(recorder->values, IsEmpty()) << "it could still be being written";
        look();
        look();
        return std::exchange(recorder->values, {});
    }

    const std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    DeviceConfig client;
};

TEST(DeviceConfig, PropertyIsTheFileByteForByte) {
    const support::TemporaryFolder folder;
    std::string content(200'000, 'x');
    content.replace(7, 5, std::string("\0\r\n\xFF\n", 5));
    std::filesystem::create_directory(folder.path("folder"));
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    host::bindProperty("bytes", "rules", folder.write("rules", content));
    host::bindProperty("bytes", "folder", folder.path("folder"));
    host::bindProperty("bytes", "pipe", folder.path("pipe"));
    DeviceConfig client;
    const Properties properties = client.getProperties("bytes", {"rules", "folder", "pipe", "unbound"});
    EXPECT_EQ(properties.getString("rules", "(absent)"), content);
    for (const char* absent : {"folder", "pipe", "unbound"}) {
        EXPECT_EQ(properties.getString(absent, "(absent)"), "(absent)");
    }
    EXPECT_EQ(client.getProperties("bytes", {"folder"}).getString("rules", "(absent)"), "(absent)");
    EXPECT_EQ(client.getProperties("byte", {"rules"}).getString("rules", "(absent)"), "(absent)");
}

TEST(DeviceConfig, EveryWayOfChangingTheFileIsTold) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        // before, the change, and what is told
        {"printf old >a/b/rules", "printf new >a/b/rules", "new"},
        {"printf old >a/b/rules", "printf new >x; mv x a/b/rules", "new"},
        {"", ": >a/b/rules", ""},
        {"printf old >a/b/rules", "rm a/b/rules", "(absent)"},
        {"printf old >a/b/rules", "rm a/b/rules; mkfifo a/b/rules", "(absent)"},
        {"rm -r a", "mkdir -p a/b; printf new >a/b/rules", "new"},
        {"printf old >a/b/rules; mkdir -p x/b; printf new >x/b/rules", "mv a previous; mv x a", "new"},
        {"mkdir 1 2; printf old >1/file; printf new >2/file; ln -s 1 current; ln -s ../../current/file a/b/rules",
         "ln -s 2 next; mv -T next current", "new"},
    };
    for (const auto& [before, change, after] : cases) {
        SCOPED_TRACE(change);
        const support::TemporaryFolder folder;
        const auto run = [&](const std::string& script) {
            EXPECT_EQ(std::system(("cd '" + folder.path().string() + "' && { " + script + "\n}").c_str()), 0);
        };
        run(std::string("mkdir -p a/b; ") + before);
        host::bindProperty("ways", "rules", folder.path("a/b/rules"));
        Watch watch("ways");
        run(change);
        EXPECT_THAT(watch.told(), ElementsAre(after));
        run("mkdir -p a/b; printf last >next; mv -T next a/b/rules; touch other");
        EXPECT_THAT(watch.told(), ElementsAre("last"));
    }
}

TEST(DeviceConfig, FileThatIsBeingWrittenIsToldOnceItIsComplete) {
    const support::TemporaryFolder folder;
    host::bindProperty("pieces", "rules", folder.path("rules"));
    Watch watch("pieces");
    for (const char* text : {"", "first half"}) {
        folder.write("rules", text);
        watch.look();
    }
    folder.write("rules", "first half, second half");
    EXPECT_THAT(watch.told(), ElementsAre("first half, second half"));
}

TEST(DeviceConfig, FileThatNeverRestsIsToldAllTheSame) {
    const support::TemporaryFolder folder;
    host::bindProperty("restless", "rules", folder.path("rules"));
    Watch watch("restless");
    for (const char* text : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}) {
        folder.write("rules", text);
        watch.look();
    }
    EXPECT_THAT(watch.recorder->values, ElementsAre("10"));
}

TEST(DeviceConfig, UnboundPropertiesAreTheFilesOfTheEnvironmentsFolder) {
    const support::TemporaryFolder folder;
    setenv("VIG_DEVICE_CONFIG", folder.path("later").c_str(), 1);
    Watch watch("unbound");
    unsetenv("VIG_DEVICE_CONFIG");
    EXPECT_FALSE(watch.client.isDeviceConfigAvailable());
    std::filesystem::create_directories(folder.path("later/unbound"));
    EXPECT_TRUE(watch.client.isDeviceConfigAvailable());
    folder.write("later/unbound/rules", "text");
    EXPECT_THAT(watch.told(), ElementsAre("text"));
    folder.write("later/unbound/.rules.swp", "an editor's own");
    EXPECT_THAT(watch.told(), IsEmpty());
    host::bindProperty("unbound", "rules", folder.write("bound", "elsewhere"));
    setenv("VIG_DEVICE_CONFIG", folder.path("later").c_str(), 1);
    com::korvel::deviceconfig::DeviceConfig client;
    unsetenv("VIG_DEVICE_CONFIG");
    EXPECT_EQ(client.getProperties("unbound", {"rules"}).getString("rules", ""), "elsewhere");
}

TEST(DeviceConfig, ListenerMayRemoveItselfAndOthersWithinANotification) {
    const support::TemporaryFolder folder;
    host::bindProperty("removal", "rules", folder.path("rules"));
    Watch watch("removal");
    const auto second = std::make_shared<Recorder>();
    watch.client.addOnPropertiesChangeListener("removal", second);
    watch.recorder->hook = [&] {
        watch.client.removeOnPropertiesChangeListener(watch.recorder);
        watch.client.removeOnPropertiesChangeListener(second);
        watch.client.removeOnPropertiesChangeListener(second);
    };
    folder.write("rules", "1");
    EXPECT_THAT(watch.told(), ElementsAre("1"));
    EXPECT_EQ(watch.recorder.use_count() + second.use_count(), 2) << "the client keeps what has been removed";
    folder.write("rules", "2");
    EXPECT_THAT(watch.told(), IsEmpty());
    EXPECT_THAT(second->values, IsEmpty());
}

TEST(DeviceConfig, ThreadThatTheSystemRefusesIsSaidAndNoMore) {
    const support::ImpossibleThreads impossible;
    const support::LogCapture log;
    DeviceConfig client;
    client.addOnPropertiesChangeListener("refused", std::make_shared<Recorder>());
    EXPECT_THAT(log.messages(), ElementsAre(testing::StartsWith("Changes of files go unnoticed: ")));
}

}  // namespace
