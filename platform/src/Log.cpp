#include <android/log.h>
#include <host/Host.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

namespace {

std::mutex sinkMutex;
// The mutex guards the sink, which is never destroyed, because threads may log until the very end of the process.
host::LogSink& currentSink = *new host::LogSink;

thread_local const host::LogSink* sinkOfThread = nullptr;

host::LogSink copyOfSink() {
    if (sinkOfThread != nullptr) {
        return *sinkOfThread;
    }
    const std::lock_guard lock(sinkMutex);
    return currentSink;
}

}  // namespace

host::LogSink host::setLogSink(LogSink sink) {
    const std::lock_guard lock(sinkMutex);
    return std::exchange(currentSink, std::move(sink));
}

host::ThreadLogSink::ThreadLogSink(LogSink sink)
    : sink(std::move(sink)), previous(std::exchange(sinkOfThread, &this->sink)) {}

host::ThreadLogSink::~ThreadLogSink() {
    sinkOfThread = previous;
}

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    std::va_list arguments;
    va_start(arguments, fmt);
    char* formatted = nullptr;
    const int length = vasprintf(&formatted, fmt, arguments);
    va_end(arguments);
    if (length < 0) {
        return length;
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(formatted, &std::free);
    if (const host::LogSink sink = copyOfSink()) {
        sink(prio, tag, {formatted, static_cast<std::size_t>(length)});
    } else {
        std::fprintf(stderr, "%c/%-8s(%5d): %s\n", "??VDIWEF"[prio], tag, getpid(), formatted);
    }
    return length;
}
