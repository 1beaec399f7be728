#pragma once

#include <android/log.h>

// Each writes one line to the platform log, printf-style, under the library's tag.
#define VIG_LOG_ERROR(...) static_cast<void>(__android_log_print(ANDROID_LOG_ERROR, "VIGManager", __VA_ARGS__))
#define VIG_LOG_INFO(...) static_cast<void>(__android_log_print(ANDROID_LOG_INFO, "VIGManager", __VA_ARGS__))
