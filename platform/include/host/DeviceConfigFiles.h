#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace host {

// Makes the file's whole content, byte for byte, the value of a property of the device configuration, in place of
// what the property was bound to before. The file need not exist: a property whose file cannot be read, or not by
// openTrusted, is absent, and so is one for which canBeProperty is false. Other permissions alone are no change that
// listeners are told. A relative path is one of the current folder. Seen by the clients that are created afterwards;
// may be called from any thread.
//
// A property P of a namespace N that is not bound is the file N/P in the folder that the environment variable
// VIG_DEVICE_CONFIG names, if it is set. The service is available while the folder of a bound file can be read, or
// the folder of that variable.
void bindProperty(const std::string& ns, const std::string& property, const std::filesystem::path& file);

// Whether a file of that mode (see stat(2)) under that path is read: a regular file, or a pipe that the shell has
// opened for the process. A pipe that nobody writes to, or a device, could be read for ever.
bool canBeProperty(const std::filesystem::path& path, mode_t mode);

}  // namespace host
