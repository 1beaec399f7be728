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
    const std::string noProxy = ", triggerService is null!";
    const auto failed = [](const std::string& what) { return "Error while getting the service proxy: " + what; };
    struct {
        const char* processName;
        android::status_t status;
        bool isFound;
        int lookups;
        std::vector<std::string> messages;
    } const cases[] = {{"camera", 0, true, 1, {}},
                       {"camera", -5, true, 1, {failed("-5 ")}},
                       {"camera", 1, true, 1, {failed("1 ")}},
                       {"camera", 0, false, 1, {failed("0 " + noProxy)}},
                       {"camera", -5, false, 1, {failed("-5 " + noProxy)}},
                       {"", -5, false, 0, {"Missing required attribute processName in event."}}};
    const auto synthesize = [](const auto&) { return TriggerMetadata{android::String16("entry")}; };
    for (const auto& [processName, status, isFound, lookups, messages] : cases) {
        const auto service = android::sp<Service>::make();
        android::lookup = {status, isFound ? service : nullptr};
        const support::LogCapture log;
        requestTrigger("prefix:", synthesize, support::TestEvent({.string = {{"processName", processName}}}));
        EXPECT_EQ(log.lines(), support::errorLines(messages));
        EXPECT_EQ(android::lookup.count, lookups) << processName << status;
        EXPECT_EQ(service->calls, messages.empty() ? 1 : 0) << status << isFound;
    }
    android::lookup = {};
}

}  // namespace
