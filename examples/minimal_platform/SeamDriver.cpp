#include <memory>
#include <utility>

#include "MinimalPlatform.h"
#include "tests/seam/Driver.h"

namespace {

using vendor::orlan::velora::TriggerContext;

struct TriggerService final : vendor::orlan::velora::ITrigger {
    explicit TriggerService(std::function<void(const TriggerContext&)> function) : receiver(std::move(function)) {}

    android::binder::Status trigger(const TriggerContext& context) override {
        receiver(context);
        return {};
    }

    const std::function<void(const TriggerContext&)> receiver;
};

}  // namespace

void seam::sendLogTo(std::function<void(std::string_view message)> receiver) {
    minimal::setLogReceiver(std::move(receiver));
}

void seam::setResponse(const std::string& document) {
    minimal::setResponse(document);
}

void seam::addTriggerService(std::function<void(const TriggerContext&)> receiver) {
    minimal::setTriggerService(std::make_shared<TriggerService>(std::move(receiver)));
}
