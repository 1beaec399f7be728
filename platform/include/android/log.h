#pragma once

// The platform log has these priorities, lowest first.
enum android_LogPriority {
    ANDROID_LOG_VERBOSE = 2,
    ANDROID_LOG_DEBUG = 3,
    ANDROID_LOG_INFO = 4,
    ANDROID_LOG_WARN = 5,
    ANDROID_LOG_ERROR = 6,
    ANDROID_LOG_FATAL = 7,
};

// Writes one message of any length to the platform log, printf-style, and returns its length in bytes. On a host
// the log is stderr, in the form "E/VIGManager( 1234): text", unless <host/Host.h> put a sink in its place. May be
// called from any thread. REQUIRES: `prio` is one of those above.
extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));
