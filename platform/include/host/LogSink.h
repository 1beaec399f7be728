#pragma once

#include <functional>
#include <string_view>

namespace host {

// Receives one message of the platform log, on the thread that logs it; several threads may be in it at once, and
// it may be copied meanwhile. `priority` is one of android_LogPriority. The views are valid during the call only. It
// may set another sink, and must not throw.
using LogSink = std::function<void(int priority, std::string_view tag, std::string_view message)>;

// Sends all later messages to `sink`, an empty one meaning stderr, and returns the sink that it replaces. May be
// called while other threads log. It does not wait for them: a message under way goes to the sink that it began
// with, so what a sink refers to must live until every thread that could be in it has come out.
LogSink setLogSink(LogSink sink);

}  // namespace host
