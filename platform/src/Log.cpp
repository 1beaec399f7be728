#include <android/log.h>
#include <host/LogSink.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace host {

namespace {

struct SinkHolder {
    std::mutex mutex;
    std::shared_ptr<const LogSink> sink = std::make_shared<const LogSink>();  // guarded by mutex; never null
};

// Never destroyed, because threads may log until the very end of the process.
SinkHolder& sinkHolder() {
    static SinkHolder& holder = *new SinkHolder;
    return holder;
}

std::shared_ptr<const LogSink> currentSink() {
    const std::lock_guard lock(sinkHolder().mutex);
    return sinkHolder().sink;
}

std::string format(const char* text, std::va_list arguments) {
    char* formatted = nullptr;
    const int length = vasprintf(&formatted, text, arguments);
    if (length < 0) {
        return text;
    }
    std::string message(formatted, static_cast<std::size_t>(length));
    std::free(formatted);
    return message;
}

std::string briefPrefix(int priority, const std::string& tag) {
    constexpr std::string_view kLetters = "??VDIWEFS";
    const auto index = static_cast<std::size_t>(priority);
    std::string prefix{index < kLetters.size() ? kLetters[index] : '?', '/'};
    prefix += tag;
    const std::string pid = std::to_string(getpid());
    prefix.append(8 - std::min<std::size_t>(tag.size(), 8), ' ').append("(");
    return prefix.append(5 - std::min<std::size_t>(pid.size(), 5), ' ').append(pid).append("): ");
}

void writeToStderr(std::string_view text) {
    // A long message takes several writes when stderr is a pipe; they must not mix with another thread's.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

// Every line carries the prefix; a line feed that ends the message begins no further line.
void logToStderr(int priority, const std::string& tag, std::string_view message) {
    const std::string prefix = briefPrefix(priority, tag);
    std::string text;
    std::size_t begin = 0;
    do {
        const std::size_t end = std::min(message.find('\n', begin), message.size());
        text.append(prefix).append(message.substr(begin, end - begin)).append("\n");
        begin = end + 1;
    } while (begin < message.size());
    writeToStderr(text);
}

}  // namespace

LogSink setLogSink(LogSink sink) {
    auto replacement = std::make_shared<const LogSink>(std::move(sink));
    {
        const std::lock_guard lock(sinkHolder().mutex);
        sinkHolder().sink.swap(replacement);
    }
    return *replacement;
}

}  // namespace host

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    const int savedErrno = errno;
    std::va_list arguments;
    va_start(arguments, fmt);
    const std::string message = host::format(fmt, arguments);
    va_end(arguments);

    const auto sink = host::currentSink();
    const std::string tagText = tag != nullptr ? tag : "";
    if (*sink) {
        (*sink)(prio, tagText, message);
    } else {
        host::logToStderr(prio, tagText, message);
    }
    errno = savedErrno;
    return static_cast<int>(message.size());
}
