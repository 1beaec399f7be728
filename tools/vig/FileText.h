#pragma once

#include <optional>
#include <string>

#include "tools/vig/Interruption.h"

namespace tool {

// Why host::openTrusted has failed, by errno value.
std::string whyNotOpened(int error);

// The whole content of a regular file or an opened pipe. Empty if it cannot be read, with the reason in `problem`, or
// if it was interrupted.
std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem);

}  // namespace tool
