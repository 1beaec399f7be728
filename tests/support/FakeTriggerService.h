#pragma once

#include <binder/IServiceManager.h>
#include <host/Host.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace support {

// What the service was asked for, in UTF-8.
struct Trigger {
    std::string triggerName;
    std::optional<std::string> processName;
    std::vector<std::string> metadata;
    std::int64_t reserved = 0;

    bool operator==(const Trigger&) const = default;
};

// How a failed assertion shows it.
inline void PrintTo(const Trigger& trigger, std::ostream* out) {
    *out << trigger.triggerName << " for " << trigger.processName.value_or("(none)") << " [" << trigger.reserved << "]";
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

    // What the calls from now on are answered; ok at first.
    void answer(const android::binder::Status& status) {
        const std::lock_guard lock(service->mutex);
        service->status = status;
    }

    std::vector<Trigger> triggers() const {
        const std::lock_guard lock(service->mutex);
        return service->triggers;
    }

    // Those since the last call.
    std::vector<Trigger> takeTriggers() const {
        const std::lock_guard lock(service->mutex);
        return std::exchange(service->triggers, {});
    }

  private:
    struct Service : vendor::orlan::velora::BnTrigger {
        android::binder::Status trigger(const vendor::orlan::velora::TriggerContext& context) override {
            const std::lock_guard lock(mutex);
            Trigger& added = triggers.emplace_back();
            added.triggerName = host::toUtf8(context.triggerName);
            if (context.processName) {
                added.processName = host::toUtf8(*context.processName);
            }
            if (context.metadata) {
                for (const auto& entry : *context.metadata) {
                    added.metadata.push_back(entry ? host::toUtf8(*entry) : "(none)");
                }
            }
            added.reserved = context.reserved;
            return status;
        }

        std::mutex mutex;
        android::binder::Status status = android::binder::Status::ok();  // guarded by mutex
        std::vector<Trigger> triggers;                                   // guarded by mutex
    };

    static android::String16 instanceName() { return android::String16("vendor.orlan.velora.ITrigger/default"); }

    const android::sp<Service> service = android::sp<Service>::make();
};

}  // namespace support
