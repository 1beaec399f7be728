#pragma once

#include <android/log.h>
#include <host/Host.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <iterator>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

struct LogLine {
    int priority;
    std::string tag;
    std::string message;

    bool operator==(const LogLine&) const = default;
};

// Failed assertions show a line like this.
inline void PrintTo(const LogLine& line, std::ostream* out) {
    *out << line.priority << "/" << line.tag << ": \"" << line.message << '"';
}

// Lines of the library at error priority, to compare a capture with.
inline std::vector<LogLine> errorLines(const std::vector<std::string>& messages) {
    std::vector<LogLine> lines;
    for (const std::string& message : messages) {
        lines.push_back({ANDROID_LOG_ERROR, "VIGManager", message});
    }
    return lines;
}

// Takes the place of the platform's log as long as it lives. Any thread may log, also while it goes.
class LogCapture {
  public:
    LogCapture()
        : previous(host::setLogSink([shared = captured](int priority, std::string_view tag, std::string_view message) {
              const std::lock_guard lock(shared->mutex);
              shared->lines.push_back({priority, std::string(tag), std::string(message)});
              shared->logged.notify_all();
          })) {}
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture() { host::setLogSink(previous); }

    std::vector<LogLine> lines() const {
        const std::lock_guard lock(captured->mutex);
        return captured->lines;
    }

    // Returns the lines since the last call.
    std::vector<LogLine> takeLines() const {
        const std::lock_guard lock(captured->mutex);
        return std::exchange(captured->lines, {});
    }

    std::vector<std::string> messages() const {
        std::vector<std::string> messages;
        std::ranges::transform(lines(), std::back_inserter(messages), &LogLine::message);
        return messages;
    }

    // Returns true if the message has been logged that often, now or soon.
    bool sees(std::string_view message, std::ptrdiff_t times = 1) const {
        std::unique_lock lock(captured->mutex);
        return captured->logged.wait_for(lock, std::chrono::seconds(30), [&] {
            return std::ranges::count(captured->lines, message, &LogLine::message) >= times;
        });
    }

  private:
    struct Captured {
        std::mutex mutex;
        std::condition_variable logged;
        std::vector<LogLine> lines;  // guarded by mutex
    };

    // It is shared with the sink, in which a thread may still be when the capture has gone.
    const std::shared_ptr<Captured> captured = std::make_shared<Captured>();
    const host::LogSink previous;
};

}  // namespace support
