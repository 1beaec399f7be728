#pragma once

#include <optional>
#include <string>

namespace tool {

// Why host::openTrusted has failed, by errno value.
std::string whyNotOpened(int error);

// The whole content of a regular file or an opened pipe. Empty, with the reason in `problem`, if it cannot be read.
std::optional<std::string> readFile(const std::string& path, std::string& problem);

}  // namespace tool
