#include "tools/vig/run/PlatformServices.h"

#include <binder/IServiceManager.h>
#include <host/Host.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "vig/actions/TriggerRequest.h"

namespace Brenta::OS::VIG::Tool {

namespace {

thread_local PlatformServices::Receiver* receiverOfThread = nullptr;
bool areThere = false;  // of the thread that makes them

}  // namespace

class PlatformServices::TriggerService : public vendor::orlan::velora::BnTrigger {
  public:
    explicit TriggerService(Receiver& receiver) : target(receiver) {}

    android::binder::Status trigger(const vendor::orlan::velora::TriggerContext& context) override {
        (receiverOfThread != nullptr ? *receiverOfThread : target).onTrigger(context);
        return android::binder::Status::ok();
    }

  private:
    Receiver& target;
};

class PlatformServices::Log {
  public:
    struct Line {
        int priority;
        std::string tag;
        std::string message;
    };

    void write(int priority, std::string_view tag, std::string_view message) {
        const std::lock_guard lock(mutex);
        waiting.push_back({priority, std::string(tag), std::string(message)});
        arrived.notify_one();
    }

    void await(std::string_view message, std::chrono::milliseconds atMost) {
        std::unique_lock lock(mutex);
        arrived.wait_for(lock, atMost,
                         [&] { return std::ranges::find(waiting, message, &Line::message) != waiting.end(); });
    }

    std::vector<Line> takeWaiting() {
        const std::lock_guard lock(mutex);
        return std::exchange(waiting, {});
    }

  private:
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<Line> waiting;  // guarded by mutex
};

PlatformServices::OnThread::OnThread(Receiver& receiver)
    : previous(std::exchange(receiverOfThread, &receiver)),
      sink([&receiver](int priority, std::string_view tag, std::string_view message) {
          receiver.onLog(priority, tag, message);
      }) {}

PlatformServices::OnThread::~OnThread() {
    receiverOfThread = previous;
}

PlatformServices::PlatformServices(Receiver& receiver)
    : target(receiver), onThread(receiver), isInner(std::exchange(areThere, true)), log(std::make_shared<Log>()) {
    if (isInner) {
        return;
    }
    previousSink = host::setLogSink([shared = log](int priority, std::string_view tag, std::string_view message) {
        shared->write(priority, tag, message);
    });
    android::defaultServiceManager()->addService(android::String16(kTriggerService),
                                                 android::sp<TriggerService>::make(receiver));
}

PlatformServices::~PlatformServices() {
    if (isInner) {
        return;
    }
    areThere = false;
    host::removeService(android::String16(kTriggerService));
    host::setLogSink(previousSink);
}

void PlatformServices::passOnLines() {
    for (const Log::Line& line : log->takeWaiting()) {
        target.onLog(line.priority, line.tag, line.message);
    }
}

void PlatformServices::awaitLine(std::string_view message, std::chrono::milliseconds atMost) {
    log->await(message, atMost);
}

}  // namespace Brenta::OS::VIG::Tool
