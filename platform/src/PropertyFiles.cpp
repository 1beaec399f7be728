#include "PropertyFiles.h"

#include <fcntl.h>
#include <host/DeviceConfigFiles.h>
#include <host/TrustedFile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace host {

namespace fs = std::filesystem;

namespace {

using Bindings = std::map<std::string, std::map<std::string, fs::path>>;

// A property that has more is absent.
constexpr std::size_t kMostBytes = std::size_t{1} << 30;

std::mutex bindingsMutex;
Bindings bindings;  // guarded by bindingsMutex

bool isReadableFolder(const fs::path& folder) {
    // The empty last name makes the path end in a slash, which only a folder may have.
    return access((folder / "").c_str(), R_OK | X_OK) == 0;
}

std::optional<std::string> readWhole(const fs::path& path) {
    // The opening of a pipe would wait for somebody who writes to it.
    const int file = openTrusted(path, O_RDONLY | O_NONBLOCK, 0);
    if (file < 0) {
        return std::nullopt;
    }
    struct stat status = {};
    if (fstat(file, &status) != 0 || !canBeProperty(path, status.st_mode)) {
        close(file);
        return std::nullopt;
    }
    fcntl(file, F_SETFL, 0);
    std::string content;
    std::array<char, 65536> buffer;
    ssize_t got = 1;
    while (content.size() < kMostBytes &&
           ((got = read(file, buffer.data(), buffer.size())) > 0 || (got < 0 && errno == EINTR))) {
        content.append(buffer.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    close(file);
    return got == 0 ? std::optional(std::move(content)) : std::nullopt;
}

// The path as it is meant now, should the process change its current folder later.
fs::path absolutePath(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::absolute(path, error);
    return error ? path : result;
}

}  // namespace

void bindProperty(const std::string& ns, const std::string& property, const fs::path& file) {
    const std::lock_guard lock(bindingsMutex);
    bindings[ns][property] = absolutePath(file);
}

bool canBeProperty(const fs::path& path, mode_t mode) {
    const std::string name = path.lexically_normal();
    return S_ISREG(mode) || (S_ISFIFO(mode) && (name.starts_with("/dev/") || name.starts_with("/proc/")));
}

bool isEditorsOwn(std::string_view fileName) {
    return fileName.starts_with('.') || fileName.ends_with('~');
}

PropertyFiles PropertyFiles::snapshot() {
    PropertyFiles files;
    if (const char* folder = std::getenv("VIG_DEVICE_CONFIG"); folder != nullptr && *folder != '\0') {
        files.root = absolutePath(folder);
    }
    const std::lock_guard lock(bindingsMutex);
    files.bound = bindings;
    return files;
}

bool PropertyFiles::available() const {
    if (!root.empty() && isReadableFolder(root)) {
        return true;
    }
    for (const auto& [ns, properties] : bound) {
        for (const auto& [property, path] : properties) {
            if (isReadableFolder(path.parent_path())) {
                return true;
            }
        }
    }
    return false;
}

std::map<std::string, std::string> PropertyFiles::read(const std::string& ns,
                                                       const std::vector<std::string>& names) const {
    std::map<std::string, std::string> values;
    for (const std::string& name : names) {
        if (auto value = readWhole(pathOf(ns, name))) {
            values.emplace(name, *std::move(value));
        }
    }
    return values;
}

std::vector<std::string> PropertyFiles::names(const std::string& ns) const {
    std::vector<std::string> names;
    if (const auto properties = bound.find(ns); properties != bound.end()) {
        for (const auto& [property, path] : properties->second) {
            names.push_back(property);
        }
    }
    if (!root.empty()) {
        std::error_code error;
        for (fs::directory_iterator entry(root / ns, error), end; !error && entry != end; entry.increment(error)) {
            const std::string name = entry->path().filename();
            if (!isEditorsOwn(name)) {
                names.push_back(name);
            }
        }
    }
    return names;
}

std::vector<fs::path> PropertyFiles::paths(const std::string& ns) const {
    std::vector<fs::path> paths;
    for (const std::string& name : names(ns)) {
        paths.push_back(pathOf(ns, name));
    }
    if (!root.empty()) {
        paths.push_back(root / ns / "");
    }
    return paths;
}

fs::path PropertyFiles::pathOf(const std::string& ns, const std::string& property) const {
    if (const auto properties = bound.find(ns); properties != bound.end()) {
        if (const auto path = properties->second.find(property); path != properties->second.end()) {
            return path->second;
        }
    }
    return root.empty() ? fs::path() : root / ns / property;
}

}  // namespace host
