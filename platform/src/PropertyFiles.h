#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Whether an editor keeps a file of that name for itself, beside the one that it saves.
bool isEditorsOwn(std::string_view fileName);

// Which files hold the properties of the device configuration. Immutable, so it may be used from any thread.
class PropertyFiles {
  public:
    // The files as they are bound now; see <host/DeviceConfigFiles.h>.
    static PropertyFiles snapshot();

    // Whether one of the folders that hold them can be read.
    bool available() const;

    // The values of those properties, without the properties whose file cannot be read.
    std::map<std::string, std::string> read(const std::string& ns, const std::vector<std::string>& names) const;

    // The names of all properties that the namespace may have.
    std::vector<std::string> names(const std::string& ns) const;

    // The absolute paths that hold the namespace's properties. One that ends in a slash stands for every file in
    // that folder.
    std::vector<std::filesystem::path> paths(const std::string& ns) const;

  private:
    std::filesystem::path pathOf(const std::string& ns, const std::string& property) const;

    std::map<std::string, std::map<std::string, std::filesystem::path>> bound;  // by namespace, then property
    std::filesystem::path root;  // folder of the properties that are not bound; empty if there is none
};

}  // namespace host
