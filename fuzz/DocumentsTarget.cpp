#include <host/Host.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Limits.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/TestEvent.h"
#include "vig/EventTypeNames.h"
#include "vig/VIGManager.h"

// A rule document: parsed, and each machine of it started and given events of every type.

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::VIGConfig;
using Brenta::OS::VIG::VIGManager;

std::size_t logLines = 0;

const VIGManager& manager() {
    static const VIGManager manager;
    host::setLogSink([](int, std::string_view, std::string_view) { ++logLines; });
    return manager;
}

// What the library's actions read, with bytes that are not UTF-8.
const support::Attributes kAttributes = {
    .uint64 = {{"memUsedMaxBytes", 1ULL << 63}},
    .int64 = {{"vmRssKB", INT64_MAX}, {"vmSwapKB", 1}, {"\xff", -1}},
    .real = {{"cpuAvgUtilization", 1e308}},
    .boolean = {{"b", true}},
    .string = {{"processName", "camera\xed\xa0\x80"}, {"", "x"}},
};

void drive(FiniteStateMachine& machine) {
    constexpr std::size_t kMostLogLines = 2'000;  // of rules that go round in circles
    machine.start();
    for (int round = 0; round < 2; ++round) {
        for (const auto& [type, name] : Brenta::OS::VIG::kEventTypeNames.pairs) {
            if (logLines > kMostLogLines) {
                return;
            }
            const support::Attributes attributes = round == 0 ? support::Attributes() : kAttributes;
            if (type == EventType::Timeout) {
                machine.onEvent(support::TestTimeoutEvent(attributes, 7));
            } else {
                machine.onEvent(support::TestEvent(attributes, type));
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const VIGManager& parser = manager();
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<std::unique_ptr<VIGConfig>> configs;
    fuzz::useWithinLimits(text, fuzz::kMegabyte,
                          [&](const std::string& document) { configs = parser.parseResponse(document); });
    logLines = 0;
    const support::FakeTriggerService service;
    for (const auto& config : configs) {
        drive(*config->getConfigPayload()->getFiniteStateMachine());
    }
    return 0;
}
