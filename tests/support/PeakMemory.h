#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <functional>

namespace support {

// The sanitizer takes memory of its own, and several times as long.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHasSanitizer = true;
#elif defined(__has_feature)
constexpr bool kHasSanitizer = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kHasSanitizer = false;
#endif

// Returns the most that a process like this one has had in memory, in bytes, when it has done the work.
inline std::size_t peakMemory(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int status = 0;
    rusage usage{};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

}  // namespace support
