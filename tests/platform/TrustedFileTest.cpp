#include <deviceconfig/DeviceConfig.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <host/DeviceConfigFiles.h>
#include <host/TrustedFile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <tuple>

#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

// The content, or the errno value.
std::string read(const fs::path& path) {
    const int file = host::openTrusted(path, O_RDONLY, 0);
    if (file < 0) {
        return std::to_string(errno);
    }
    char text[16];
    const ssize_t length = ::read(file, text, sizeof text);
    close(file);
    return {text, static_cast<std::size_t>(length)};
}

TEST(TrustedFile, LinksAreFollowedUnlessTheyLeadOutOfAFolderThatOthersCanWrite) {
    const support::TemporaryFolder folder;
    constexpr uid_t kOwn = 0;
    constexpr uid_t kNobody = 65534;
    const std::tuple<const char*, mode_t, uid_t, gid_t> folders[] = {
        {"own", 0755, kOwn, kOwn},     {"own group", 0775, kOwn, kOwn}, {"open", 0777, kOwn, kOwn},
        {"sticky", 01777, kOwn, kOwn}, {"group", 0775, kOwn, kNobody},  {"foreign", 0755, kNobody, kOwn},
    };
    for (const auto& [name, mode, owner, group] : folders) {
        if (geteuid() != 0 && (owner != kOwn || group != kOwn)) {
            continue;  // only root can give a folder away
        }
        const fs::path here = folder.path(name);
        const bool isOwn = std::string(name).starts_with("own");
        fs::create_directories(here / "below");
        folder.write(std::string(name) + "/file", "text");
        folder.write(std::string(name) + "/below/file", "below");
        folder.write("outside", "outside");
        fs::create_symlink("file", here / "within");
        fs::create_symlink("below/file", here / "below it");
        fs::create_symlink("../outside", here / "relative");
        fs::create_symlink(folder.path("outside"), here / "absolute");
        fs::create_symlink("..", here / "above");
        fs::create_symlink("round", here / "round");
        fs::create_symlink(std::string(name) + "/relative", folder.path(std::string("to ") + name));
        if (geteuid() == 0) {
            ASSERT_EQ(chown(here.c_str(), owner, group), 0);
        }
        chmod(here.c_str(), mode);
        const std::string outside = isOwn ? "outside" : std::to_string(EPERM);
        const std::pair<fs::path, std::string> cases[] = {
            {here / "file", "text"},
            {here / "./below/../file", "text"},
            {here / "within", "text"},
            {here / "below/file", "below"},
            {here / "below it", isOwn ? "below" : std::to_string(EPERM)},
            {here / "relative", outside},
            {here / "absolute", outside},
            {here / "above/outside", outside},
            {folder.path(std::string("to ") + name), outside},
            {here / "round", std::to_string(ELOOP)},
            {here / "none", std::to_string(ENOENT)},
            {here / "file/none", std::to_string(ENOTDIR)},
        };
        for (const auto& [path, expected] : cases) {
            EXPECT_EQ(read(path), expected) << path;
        }
    }
    EXPECT_EQ(read(""), std::to_string(ENOENT));
    const int file = open(folder.path("own/file").c_str(), O_RDONLY);
    EXPECT_EQ(read("/dev/fd/" + std::to_string(file)), "text");
    close(file);
}

TEST(TrustedFile, PropertiesAreReadAsOne) {
    const support::TemporaryFolder folder;
    fs::create_directory(folder.path("open"));
    chmod(folder.path("open").c_str(), 0777);
    fs::create_symlink(folder.write("secret", "secret"), folder.path("open/rules"));
    host::bindProperty("TrustedFile", "rules", folder.path("open/rules"));
    com::korvel::deviceconfig::DeviceConfig client;
    EXPECT_EQ(client.getProperties("TrustedFile", {"rules"}).getString("rules", "absent"), "absent");
}

}  // namespace
