#include <android/log.h>
#include <gmock/gmock.h>

#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/actions/LogZramHeartBeatActionFunctionFactory.h"
#include "vig/actions/TestActionFunctionFactory.h"
#include "vig/actions/VIGTriggerVeloraCpuFuncActionFactoryImpl.h"
#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"

namespace {

using namespace Brenta::OS::VIG;
using support::LogCapture;
using support::TestEvent;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Factory>
void expectNoParameters(const std::string& refusal) {
    const Factory factory;
    for (const VIGActionParameter& parameter : std::vector<VIGActionParameter>{0, 0.0, ""}) {
        const LogCapture log;
        EXPECT_FALSE(factory.get({parameter}).has_value());
        EXPECT_EQ(log.lines(), support::errorLines({refusal}));
    }
    const LogCapture log;
    EXPECT_NE(factory.get({}).value_or(nullptr), nullptr);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(ActionFactories, AcceptNoParametersAndSaySo) {
    expectNoParameters<TestActionFunctionFactory>("Test Action should not have any parameters.");
    expectNoParameters<LogZramHeartBeatActionFunctionFactory>(
        "LogZramHeartBeatActionFunctionFactory should not have any parameters.");
    expectNoParameters<VIGTriggerVeloraFuncActionFactoryImpl>(
        "VIGTriggerVeloraFuncActionFactoryImpl should not have any parameters.");
    expectNoParameters<VIGTriggerVeloraCpuFuncActionFactoryImpl>(
        "VIGTriggerVeloraCpuFuncActionFactoryImpl should not have any parameters.");
}

TEST(LogZramHeartBeatAction, LogsTheFiguresOrZero) {
    const std::pair<support::Attributes, std::string> cases[] = {
        {{.uint64 = {{"memUsedMaxBytes", 7}, {"numCompressedDataBytes", 3}}},
         "memUsedMaxBytes: 7, numCompressedDataBytes: 3"},
        {{.uint64 = {{"numCompressedDataBytes", UINT64_MAX}}, .int64 = {{"memUsedMaxBytes", 7}}},
         "memUsedMaxBytes: 0, numCompressedDataBytes: 18446744073709551615"},
        {{}, "memUsedMaxBytes: 0, numCompressedDataBytes: 0"}};
    for (const auto& [attributes, figures] : cases) {
        support::TestContext context({});
        const LogCapture log;
        (*LogZramHeartBeatActionFunctionFactory().get({}))(context, TestEvent(attributes));
        const std::string message = "Received VIG zram heart beat. " + figures;
        EXPECT_THAT(log.lines(), ElementsAre(support::LogLine{ANDROID_LOG_INFO, "VIGManager", message}));
    }
}

}  // namespace
