#include "tests/seam/Driver.h"

#include <binder/IServiceManager.h>
#include <host/Host.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include <filesystem>
#include <utility>

#include "tests/support/TemporaryFolder.h"

namespace {

using vendor::orlan::velora::TriggerContext;

class TriggerService final : public vendor::orlan::velora::BnTrigger {
  public:
    explicit TriggerService(std::function<void(const TriggerContext&)> function) : receiver(std::move(function)) {}

    android::binder::Status trigger(const TriggerContext& context) override {
        receiver(context);
        return android::binder::Status::ok();
    }

  private:
    const std::function<void(const TriggerContext&)> receiver;
};

}  // namespace

void seam::sendLogTo(std::function<void(std::string_view message)> receiver) {
    host::setLogSink([receiver = std::move(receiver)](int /*priority*/, std::string_view /*tag*/,
                                                      std::string_view message) { receiver(message); });
}

void seam::setResponse(const std::string& document) {
    static const support::TemporaryFolder folder;
    std::filesystem::rename(folder.write("new", document), folder.path("vig_response"));
    host::bindProperty("korvel_vig", "vig_response", folder.path("vig_response"));
}

void seam::addTriggerService(std::function<void(const TriggerContext&)> receiver) {
    android::defaultServiceManager()->addService(android::String16("vendor.orlan.velora.ITrigger/default"),
                                                 android::sp<TriggerService>::make(std::move(receiver)));
}
