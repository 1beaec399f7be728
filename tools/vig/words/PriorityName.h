#pragma once

#include <android/log.h>

#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Returns how reports call one of android_LogPriority.
inline std::string_view priorityName(int priority) {
    switch (priority) {
        case ANDROID_LOG_VERBOSE:
            return "verbose";
        case ANDROID_LOG_DEBUG:
            return "debug";
        case ANDROID_LOG_INFO:
            return "info";
        case ANDROID_LOG_WARN:
            return "warn";
        case ANDROID_LOG_ERROR:
            return "error";
        case ANDROID_LOG_FATAL:
            return "fatal";
        default:
            return "unknown";
    }
}

}  // namespace Brenta::OS::VIG::Tool
