#include <android/log.h>
#include <gmock/gmock.h>

#include "tests/support/FakeTriggerService.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"
#include "vig/actions/LogZramHeartBeatActionFunctionFactory.h"
#include "vig/actions/TestActionFunctionFactory.h"
#include "vig/actions/VIGTriggerVeloraCpuFuncActionFactoryImpl.h"
#include "vig/actions/VIGTriggerVeloraFuncActionFactoryImpl.h"

namespace {

using namespace Brenta::OS::VIG;
using support::Attributes;
using support::errorLines;
using support::FakeTriggerService;
using support::LogCapture;
using support::TestEvent;
using support::Trigger;
using testing::ElementsAre;
using testing::IsEmpty;

void fire(const VIGActionFunctionFactory& factory, const TestEvent& event) {
    support::TestContext context({.string = {{"processName", "of the context"}}});
    (*factory.get({}))(context, event);
}

const VIGTriggerVeloraFuncActionFactoryImpl kMemory;
const VIGTriggerVeloraCpuFuncActionFactoryImpl kCpu;
const LogZramHeartBeatActionFunctionFactory kLogZram;
const TestActionFunctionFactory kNothing;

const Attributes kCamera = {.int64 = {{"vmRssKB", 1000}, {"vmSwapKB", 24}}, .string = {{"processName", "camera"}}};
const Trigger kCameraTrigger = {"vig:memory_heartbeat_over_budget:camera",
                                "camera",
                                {"threshold_current_value:1024", "threshold_units:RSS_anon_plus_swap_KB",
                                 "vmRssKB:1000", "vmSwapKB:24", "processName:camera"}};
const std::string kNoService = "Error while getting the service proxy: -2 , triggerService is null!";

void expectTrigger(const VIGActionFunctionFactory& factory, const Attributes& attributes, const Trigger& expected) {
    const FakeTriggerService service;
    const LogCapture log;
    fire(factory, TestEvent(attributes));
    EXPECT_THAT(service.triggers(), ElementsAre(expected));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(ActionFactories, AcceptNoParametersAndSaySo) {
    const std::pair<const VIGActionFunctionFactory&, const char*> cases[] = {
        {kNothing, "Test Action"},
        {kLogZram, "LogZramHeartBeatActionFunctionFactory"},
        {kMemory, "VIGTriggerVeloraFuncActionFactoryImpl"},
        {kCpu, "VIGTriggerVeloraCpuFuncActionFactoryImpl"}};
    for (const auto& [factory, name] : cases) {
        const LogCapture log;
        for (const VIGActionParameter& parameter : std::vector<VIGActionParameter>{0, 0.0, ""}) {
            EXPECT_FALSE(factory.get({parameter}).has_value());
            EXPECT_EQ(log.takeLines(), errorLines({name + std::string(" should not have any parameters.")}));
        }
        EXPECT_NE(factory.get({}).value_or(nullptr), nullptr);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST(LogZramHeartBeatAction, LogsTheFiguresOrZero) {
    const std::pair<Attributes, std::string> cases[] = {
        {{.uint64 = {{"memUsedMaxBytes", 7}, {"numCompressedDataBytes", 3}}},
         "memUsedMaxBytes: 7, numCompressedDataBytes: 3"},
        {{.uint64 = {{"numCompressedDataBytes", UINT64_MAX}}, .int64 = {{"memUsedMaxBytes", 7}}},
         "memUsedMaxBytes: 0, numCompressedDataBytes: 18446744073709551615"},
        {{}, "memUsedMaxBytes: 0, numCompressedDataBytes: 0"}};
    for (const auto& [attributes, figures] : cases) {
        const LogCapture log;
        fire(kLogZram, TestEvent(attributes));
        const std::string message = "Received VIG zram heart beat. " + figures;
        EXPECT_THAT(log.lines(), ElementsAre(support::LogLine{ANDROID_LOG_INFO, "VIGManager", message}));
    }
}

TEST(TriggerActions, DescribeTheBreachAndEveryAttributeByKind) {
    expectTrigger(kMemory, kCamera, kCameraTrigger);
    expectTrigger(
        kCpu, {.real = {{"cpuAvgUtilization", 90.0}}, .string = {{"processName", "gallery"}}},
        {"vig:cpu_over_budget:gallery",
         "gallery",
         {"threshold_current_value:90", "threshold_units:CPU_credits", "cpuAvgUtilization:90", "processName:gallery"}});
    expectTrigger(kCpu,
                  {.uint64 = {{"z", UINT64_MAX}, {"a", 0}},
                   .int64 = {{"i", INT64_MIN}},
                   .real = {{"cpuAvgUtilization", 87.5}, {"d", 1e16}, {"e", 0.1}, {"f", -0.0}},
                   .boolean = {{"foreground", true}, {"b", false}},
                   .string = {{"empty", ""}, {"processName", "a:b {}"}, {"", "no name"}}},
                  {"vig:cpu_over_budget:a:b {}",
                   "a:b {}",
                   {"threshold_current_value:87.5", "threshold_units:CPU_credits", "z:18446744073709551615", "a:0",
                    "i:-9223372036854775808", "cpuAvgUtilization:87.5", "d:1e+16", "e:0.1", "f:-0", "foreground:true",
                    "b:false", "empty:", "processName:a:b {}", ":no name"}});
}

TEST(TriggerActions, WrapASumThatIsBeyondTheRange) {
    expectTrigger(kMemory, {.int64 = {{"vmSwapKB", 1}, {"vmRssKB", INT64_MAX}}, .string = {{"processName", "p"}}},
                  {"vig:memory_heartbeat_over_budget:p",
                   "p",
                   {"threshold_current_value:-9223372036854775808", "threshold_units:RSS_anon_plus_swap_KB",
                    "vmSwapKB:1", "vmRssKB:9223372036854775807", "processName:p"}});
}

TEST(TriggerActions, ReplaceWhatIsNotUtf8AndANulWhichWouldCutTheText) {
    const std::pair<std::string, std::string> cases[] = {{"\xF0\x9F\x8E\xB5\xFF!", "\xF0\x9F\x8E\xB5\uFFFD!"},
                                                         {std::string("camera\0evil", 11), "camera\uFFFDevil"},
                                                         {std::string("\0evil", 5), "\uFFFDevil"},
                                                         {std::string(1, '\0'), "\uFFFD"}};
    for (const auto& [sent, arrives] : cases) {
        expectTrigger(kCpu,
                      {.real = {{"cpuAvgUtilization", 1.5}},
                       .string = {{"processName", sent}, {std::string("\xC0\0y", 3), std::string("v\0\xE2\x82", 4)}}},
                      {"vig:cpu_over_budget:" + arrives,
                       arrives,
                       {"threshold_current_value:1.5", "threshold_units:CPU_credits", "cpuAvgUtilization:1.5",
                        "processName:" + arrives, "\uFFFD\uFFFDy:v\uFFFD\uFFFD"}});
    }
}

TEST(TriggerActions, SendNothingWithoutTheAttributesThatTheyNeed) {
    const support::NamedValues<std::string> named = {{"processName", "p"}};
    struct {
        const VIGActionFunctionFactory& factory;
        Attributes attributes;
        std::string missing;
    } const cases[] = {
        {kMemory, {}, "e processName"},
        {kMemory, {.int64 = {{"vmRssKB", 1}, {"vmSwapKB", 1}}, .string = {{"processName", ""}}}, "e processName"},
        {kMemory, {.string = named}, "es vmRssKB"},
        {kMemory, {.uint64 = {{"vmRssKB", 1}}, .int64 = {{"vmSwapKB", 1}}, .string = named}, "es vmRssKB"},
        {kMemory, {.int64 = {{"vmRssKB", 1}}, .string = named}, "es vmSwapKB"},
        {kCpu, {.real = {{"cpuAvgUtilization", 1.0}}}, "e processName"},
        {kCpu, {.int64 = {{"cpuAvgUtilization", 1}}, .string = named}, "e cpuAvgUtilization"},
    };
    const FakeTriggerService service;
    for (const auto& [factory, attributes, missing] : cases) {
        const LogCapture log;
        fire(factory, TestEvent(attributes));
        std::vector<std::string> messages = {"Missing required attribut" + missing + " in event."};
        if (missing != "e processName") {
            messages.emplace_back("synthesizeMetadata from event failed!");
        }
        EXPECT_EQ(log.lines(), errorLines(messages));
    }
    EXPECT_THAT(service.triggers(), IsEmpty());
}

TEST(TriggerActions, LookTheServiceUpOnEveryCallAndIgnoreItsAnswer) {
    constexpr std::int32_t kDead = -129;  // how the binder answers for it
    struct DeathBringer : TestEvent {
        using TestEvent::TestEvent;
        std::vector<std::string_view> keys(ValueType kind) const override {
            host::removeService(android::String16("vendor.orlan.velora.ITrigger/default"));
            return TestEvent::keys(kind);
        }
    };
    const LogCapture log;
    fire(kMemory, TestEvent(kCamera));
    EXPECT_EQ(log.takeLines(), errorLines({kNoService}));
    FakeTriggerService service;
    service.answer([] { return android::binder::Status::fromExceptionCode(kDead); });
    fire(kMemory, DeathBringer(kCamera));
    EXPECT_THAT(log.lines(), IsEmpty());
    fire(kCpu, TestEvent({.string = {{"processName", "p"}}}));
    EXPECT_EQ(log.lines(), errorLines({kNoService}));
    EXPECT_THAT(service.triggers(), ElementsAre(kCameraTrigger));
}

TEST(TriggerActions, LeaveOutAListedAttributeThatHasNoValueUnlessItIsAString) {
    struct KeysWithoutValues : TestEvent {
        using TestEvent::TestEvent;
        std::vector<std::string_view> keys(ValueType /*kind*/) const override { return {"ghost"}; }
    };
    const FakeTriggerService service;
    fire(kMemory, KeysWithoutValues(kCamera));
    ASSERT_EQ(service.triggers().size(), 1U);
    EXPECT_THAT(service.triggers()[0].metadata,
                ElementsAre("threshold_current_value:1024", "threshold_units:RSS_anon_plus_swap_KB", "ghost:"));
}

}  // namespace
