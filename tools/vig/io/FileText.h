#pragma once

#include <optional>
#include <string>

#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Returns why host::openTrusted has failed, by its errno value.
std::string whyNotOpened(int error);

// Returns why the file cannot be read as a rule document is on a device, by its folder, or nothing if it can.
std::string whyUnreadable(const std::string& path);

// Returns the whole content of a regular file or an opened pipe, or nothing if it cannot be read, with the reason in
// `problem`, or if it was interrupted.
std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem);

}  // namespace Brenta::OS::VIG::Tool
