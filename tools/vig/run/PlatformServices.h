#pragma once

#include <host/Host.h>
#include <utils/StrongPointer.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include <chrono>
#include <memory>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// Stands in for the parts of the device that the library calls, as long as it lives: the platform log and the trigger
// service. What happens on the thread that made it, which is the one that drives the machines, is passed on at once.
// Log lines of other threads wait until that thread asks for them, so that the receiver needs no lock; but a thread
// that drives machines of its own has a receiver of its own.
class PlatformServices {
  public:
    class Receiver {
      public:
        virtual void onLog(int priority, std::string_view tag, std::string_view message) = 0;
        virtual void onTrigger(const vendor::orlan::velora::TriggerContext& context) = 0;

      protected:
        ~Receiver() = default;
    };

    // While it lives, what the thread that made it logs and triggers goes to that receiver, which must outlive it.
    // To be destroyed on the same thread, the latest one first.
    class OnThread {
      public:
        explicit OnThread(Receiver& receiver);
        OnThread(const OnThread&) = delete;
        OnThread& operator=(const OnThread&) = delete;
        ~OnThread();

      private:
        Receiver* const previous;
        const host::ThreadLogSink sink;
    };

    // REQUIRES: `receiver` outlives it, and it outlives all other threads that log; of several objects, all are made on
    // one thread. Within the life of another one it stands in for nothing but what that thread does. To be destroyed on
    // the thread that made it, the latest one first.
    explicit PlatformServices(Receiver& receiver);
    PlatformServices(const PlatformServices&) = delete;
    PlatformServices& operator=(const PlatformServices&) = delete;
    ~PlatformServices();

    // Passes on the log lines of other threads, in the order in which they were logged.
    void passOnLines();

    // Returns once another thread has logged that message and it waits to be passed on, or after the time.
    void awaitLine(std::string_view message, std::chrono::milliseconds atMost);

  private:
    class TriggerService;
    class Log;

    Receiver& target;
    const OnThread onThread;
    const bool isInner;
    const std::shared_ptr<Log> log;
    host::LogSink previousSink;
};

}  // namespace Brenta::OS::VIG::Tool
