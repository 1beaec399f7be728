#include <binder/IServiceManager.h>
#include <gtest/gtest.h>
#include <vendor/orlan/velora/BnTrigger.h>

#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/actions/TriggerRequest.h"

namespace {

using Brenta::OS::VIG::requestTrigger;
using Brenta::OS::VIG::TriggerMetadata;

struct Service : vendor::orlan::velora::BnTrigger {
    android::binder::Status trigger(const vendor::orlan::velora::TriggerContext& /*context*/) override {
        ++calls;
        return android::binder::Status::ok();
    }
    int calls = 0;
};

TEST(TriggerRequest, LooksUpAfterTheProcessNameAndCallsOnlyWhatWasFoundWithoutAnError) {
    const std::string failed = "Error while getting the service proxy: ";
    const struct {
        const char* processName;
        android::status_t status;
        bool isFound;
        std::string message;
    } cases[] = {{"camera", 0, true, ""},
                 {"camera", 1, true, failed + "1 "},
                 {"camera", -5, false, failed + "-5 , triggerService is null!"},
                 {"", -5, false, "Missing required attribute processName in event."}};
    const auto synthesize = [](const auto&) { return TriggerMetadata{android::String16("entry")}; };
    for (const auto& [processName, status, isFound, message] : cases) {
        const auto service = android::sp<Service>::make();
        android::lookup = {status, isFound ? service : nullptr};
        const support::LogCapture log;
        requestTrigger("prefix:", synthesize, support::TestEvent({.string = {{"processName", processName}}}));
        EXPECT_EQ(log.messages(), std::vector<std::string>(message.empty() ? 0 : 1, message));
        EXPECT_EQ(android::lookup.count, *processName == '\0' ? 0 : 1) << status;
        EXPECT_EQ(service->calls, message.empty() ? 1 : 0) << status << isFound;
    }
    android::lookup = {};
}

}  // namespace
