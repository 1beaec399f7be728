#pragma once

#include <utils/String16.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// The tool and the tests use these to act on the stand-ins for the device. Any thread may call them.
namespace host {

// Receives one message of the platform log, on the thread that logs it; several threads may be in it at once, and it is
// copied for each message. `priority` is one of android_LogPriority. The views are valid during the call only. It may
// set another sink, and must not throw.
using LogSink = std::function<void(int priority, std::string_view tag, std::string_view message)>;

// Sends all later messages to `sink`, an empty one meaning stderr, and returns the sink that it replaces. It does not
// wait for threads that log: a message under way goes to the sink that it began with, so what a sink refers to must
// live until every thread that could be in it has come out.
LogSink setLogSink(LogSink sink);

// While it lives, what the thread that made it logs goes to `sink` alone, whatever setLogSink() says; where there are
// several, to that of the latest. To be destroyed on the same thread, the latest one first.
class ThreadLogSink {
  public:
    explicit ThreadLogSink(LogSink sink);
    ThreadLogSink(const ThreadLogSink&) = delete;
    ThreadLogSink& operator=(const ThreadLogSink&) = delete;
    ~ThreadLogSink();

  private:
    const LogSink sink;
    const LogSink* const previous;
};

inline constexpr std::size_t kTooManyBytes = std::size_t{1} << 30;

// Makes the file's whole content, byte for byte, the value of a property of the device configuration, for the clients
// that are created afterwards. The property is absent while there is no such file, or it is no regular file, has
// kTooManyBytes or more, or cannot be read. A relative path is one of the folder that is current now.
//
// A property P of a namespace N that is not bound is the file N/P in the folder that the environment variable
// VIG_DEVICE_CONFIG names, if it is set. The service is available while that folder exists, or the folder of a bound
// file.
void bindProperty(const std::string& ns, const std::string& property, const std::string& file);

// Takes a service out of the service manager, as when its process dies. Who holds it keeps it.
void removeService(const android::String16& name);

// Returns the text in UTF-8. REQUIRES: the text has no surrogate without its partner; what follows one is left out.
std::string toUtf8(const android::String16& text);

}  // namespace host
