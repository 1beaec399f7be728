#include "tests/vig/failures/Faults.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdint>

// (Without the headers that declare them, each in its own way.)

namespace {

template <typename Function>
Function* realOne(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

constexpr int kCurrentFolder = -100;

int openUnlessFaulty(int folder, const char* path, int flags, unsigned mode) {
    static const auto real = realOne<int(int, const char*, int, ...)>("openat");
    const auto fault = faults::openings.find(path);
    if (fault == faults::openings.end()) {
        return real(folder, path, flags, mode);
    }
    errno = fault->second.error;
    return errno != 0 ? -1 : real(folder, fault->second.instead.c_str(), flags, mode);
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

// The mode is of no meaning where none is given.
EXPORT int open(const char* path, int flags, unsigned mode) {
    return openUnlessFaulty(kCurrentFolder, path, flags, mode);
}

EXPORT int openat(int folder, const char* path, int flags, unsigned mode) {
    return openUnlessFaulty(folder, path, flags, mode);
}

EXPORT int inotify_add_watch(int notifier, const char* path, std::uint32_t mask) {
    static const auto real = realOne<int(int, const char*, std::uint32_t)>("inotify_add_watch");
    if (faults::watchError == 0) {
        return real(notifier, path, mask);
    }
    errno = faults::watchError;
    return -1;
}
