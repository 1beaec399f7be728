// What a host lacks of a device, for a service that is linked with this file and else stays as it is: the document with
// the rules, which is rules.json in the current folder, and the trigger service, which prints what it is asked for.

#include <binder/IServiceManager.h>
#include <host/Host.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include <iostream>

namespace {

using vendor::orlan::velora::BnTrigger;
using vendor::orlan::velora::TriggerContext;

class PrintingTriggerService : public BnTrigger {
  public:
    // Called on the thread that gave the observation, which waits for the answer.
    android::binder::Status trigger(const TriggerContext& context) override {
        std::cout << "trigger requested: " << host::toUtf8(context.triggerName) << '\n';
        if (context.metadata) {
            for (const auto& entry : *context.metadata) {
                std::cout << "  " << (entry ? host::toUtf8(*entry) : "") << '\n';
            }
        }
        return android::binder::Status::ok();
    }
};

// It is done before main begins, and so before the service creates its manager.
[[maybe_unused]] const bool isSetUp = [] {
    host::bindProperty("korvel_vig", "vig_response", "rules.json");
    android::defaultServiceManager()->addService(android::String16("vendor.orlan.velora.ITrigger/default"),
                                                 android::sp<PrintingTriggerService>::make());
    return true;
}();

}  // namespace
