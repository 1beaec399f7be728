#pragma once

#include <optional>
#include <string>

#include "tools/vig/io/Descriptor.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

// Why host::openTrusted has failed, by errno value.
std::string whyNotOpened(int error);

// Why the file cannot be read as a rule document is on a device, by its folder; empty if it can.
std::string whyUnreadable(const std::string& path);

// The whole content of a regular file or an opened pipe. Empty if it cannot be read, with the reason in `problem`, or
// if it was interrupted.
std::optional<std::string> readFile(const std::string& path, const Interruption& interruption, std::string& problem);

// The same as a file in memory, for who takes only a path, or takes it more than once.
std::optional<Descriptor> copyInMemory(const std::string& path, const Interruption& interruption, std::string& problem);

// The path of an open file, as long as it is open.
std::string pathOf(const Descriptor& file);

}  // namespace Brenta::OS::VIG::Tool
