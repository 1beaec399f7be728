#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace support {

// The rule documents in examples/, without their tests.
inline std::vector<std::string> exampleDocuments() {
    std::vector<std::string> documents;
    for (const auto& entry : std::filesystem::directory_iterator(VIG_SOURCE_DIR "/examples")) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() == ".json" && path.stem().extension() != ".test") {
            std::ifstream file(path);
            documents.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
    }
    return documents;
}

}  // namespace support
