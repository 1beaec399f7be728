#include <host/Host.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Inputs.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/TestEvent.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"
#include "vig/EventTypeNames.h"
#include "vig/parsers/VIGResponseParser.h"

// A rule document: parsed, and each machine of it started and given events of every type. `vig check` finds an error
// exactly in what the library refuses.

namespace {

namespace Tool = Brenta::OS::VIG::Tool;
using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;

std::size_t logLines = 0;

// The library's actions read these, with bytes that are not UTF-8.
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
    for (const support::Attributes& attributes : {support::Attributes(), kAttributes}) {
        for (const auto& [type, name] : Brenta::OS::VIG::kEventTypeNames.pairs) {
            if (logLines > kMostLogLines) {
                return;
            }
            type == EventType::Timeout ? machine.onEvent(support::TestTimeoutEvent(attributes, 7))
                                       : machine.onEvent(support::TestEvent(attributes, type));
        }
    }
}

bool isRefusal(const Tool::Finding& each) {
    return each.severity == Tool::Severity::Error && each.name != "endless-entering";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto registry = Tool::libraryRegistry();
    static const auto catalogue = Tool::Catalogue::builtIn();
    static const auto previous = host::setLogSink([](int, std::string_view, std::string_view) { ++logLines; });
    constexpr std::size_t kMostChecked = 4096;  // longer texts are there for their depth
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::unique_ptr<std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>> configs;
    fuzz::useWithinLimits(text, fuzz::kMegabyte, [&](const std::string& document) {
        configs = Brenta::OS::VIG::VIGResponseParser().parseFromString(document, registry).value;
    });
    if (size <= kMostChecked) {
        fuzz::useWithinLimits(text, fuzz::kMegabyte, [](const std::string& document) {
            const auto found = findingsIn(Tool::DocumentText("rules", document), registry, catalogue).all;
            const bool isAccepted =
                Brenta::OS::VIG::VIGResponseParser().parseFromString(document, registry).value != nullptr;
            if (std::ranges::none_of(found, isRefusal) != isAccepted) {
                fuzz::fail(isAccepted ? "check finds an error" : "check finds no error");
            }
        });
    }
    logLines = 0;
    const support::FakeTriggerService service;
    if (configs != nullptr) {
        for (const auto& config : *configs) {
            drive(*config->getConfigPayload()->getFiniteStateMachine());
        }
    }
    return 0;
}
