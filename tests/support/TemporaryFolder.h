#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace support {

// A new, empty folder that goes with the object, with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "vig-test-XXXXXX").string();
        folder = mkdtemp(name.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path path(std::string_view name) const { return folder / name; }

    // Creates or overwrites the file and returns its path.
    std::filesystem::path write(std::string_view name, std::string_view text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

  private:
    std::filesystem::path folder;
};

}  // namespace support
