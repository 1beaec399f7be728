#pragma once

#include <binder/IServiceManager.h>
#include <host/Host.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace support {

using android::binder::Status;

// The service was asked for this, in UTF-8; a text that was left out is "(none)".
struct Trigger {
    std::string triggerName;
    std::string processName;
    std::vector<std::string> metadata;
    std::int64_t reserved = 0;

    bool operator==(const Trigger&) const = default;
};

// Failed assertions show a trigger like this.
inline void PrintTo(const Trigger& trigger, std::ostream* out) {
    *out << trigger.triggerName << " for " << trigger.processName << " [" << trigger.reserved << "]";
    for (const std::string& entry : trigger.metadata) {
        *out << "\n  " << entry;
    }
}

// The trigger service of the device, registered as long as it lives. Any thread may call it.
class FakeTriggerService {
  public:
    FakeTriggerService() { android::defaultServiceManager()->addService(instanceName(), service); }
    FakeTriggerService(const FakeTriggerService&) = delete;
    FakeTriggerService& operator=(const FakeTriggerService&) = delete;
    ~FakeTriggerService() { host::removeService(instanceName()); }

    // Every call from now on is answered by the function, ok at first.
    void answer(std::function<Status()> answer) {
        const std::lock_guard lock(service->mutex);
        service->answer = std::move(answer);
    }

    std::vector<Trigger> triggers() const {
        const std::lock_guard lock(service->mutex);
        return service->triggers;
    }

    // Returns those since the last call.
    std::vector<Trigger> takeTriggers() const {
        const std::lock_guard lock(service->mutex);
        return std::exchange(service->triggers, {});
    }

  private:
    struct Service : vendor::orlan::velora::BnTrigger {
        Status trigger(const vendor::orlan::velora::TriggerContext& context) override {
            const auto text = [](const auto& from) { return from ? host::toUtf8(*from) : "(none)"; };
            Trigger asked{host::toUtf8(context.triggerName), text(context.processName), {}, context.reserved};
            if (context.metadata) {
                std::ranges::transform(*context.metadata, std::back_inserter(asked.metadata), text);
            }
            std::unique_lock lock(mutex);
            triggers.push_back(std::move(asked));
            const auto answerThis = answer;
            lock.unlock();
            return answerThis();
        }

        std::mutex mutex;
        std::function<Status()> answer = [] { return Status::ok(); };  // guarded by mutex
        std::vector<Trigger> triggers;                                 // guarded by mutex
    };

    static android::String16 instanceName() { return android::String16("vendor.orlan.velora.ITrigger/default"); }

    const android::sp<Service> service = android::sp<Service>::make();
};

}  // namespace support
