#pragma once

#include <sys/types.h>

#include <filesystem>

namespace host {

// Opens a file as open(2) does, to be closed when the process becomes another program. A symbolic link in a folder that
// another user can write is followed within that folder only: another could make it lead to a file that only the reader
// may read. EPERM if there is one on the way that leads out. Trusted are root, and the process's own user and group,
// which on most systems is that user's alone.
int openTrusted(const std::filesystem::path& path, int flags, mode_t mode);

}  // namespace host
