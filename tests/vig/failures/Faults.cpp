#include "tests/vig/failures/Faults.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>

// (Without the headers that declare them, each in its own way.)

namespace {

template <typename Function>
Function* realOne(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = va_arg(arguments, unsigned);  // of no meaning where none is given
    va_end(arguments);
    static const auto real = realOne<int(const char*, int, ...)>("open");
    const auto fault = faults::openings.find(path);
    if (fault == faults::openings.end()) {
        return real(path, flags, mode);
    }
    if (fault->second.error != 0) {
        errno = fault->second.error;
        return -1;
    }
    return real(fault->second.instead.c_str(), flags, mode);
}

extern "C" __attribute__((visibility("default"))) int inotify_add_watch(int notifier, const char* path,
                                                                        std::uint32_t mask) {
    static const auto real = realOne<int(int, const char*, std::uint32_t)>("inotify_add_watch");
    if (faults::watchError == 0) {
        return real(notifier, path, mask);
    }
    errno = faults::watchError;
    return -1;
}
