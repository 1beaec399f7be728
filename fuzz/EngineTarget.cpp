#include <android/log.h>
#include <host/Host.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Inputs.h"
#include "fuzz/ReferenceEngine.h"
#include "fuzz/Script.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/TestEvent.h"
#include "vig/VIGManager.h"
#include "vig/functions/PseudoRandomGenerator.h"

// A rule document and, after the first NUL, bytes that stand for what its machines are given. The library and the
// reference engine must do the same with them.

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using fuzz::registry;
using fuzz::Script;

// The library, seen as the reference engine shows itself.
class Library {
  public:
    Library() {
        for (const auto& [name, factory] : registry().getActionFunctionFactories()) {
            if (!reference::kActions.contains(name)) {
                fuzz::fail("the reference engine lacks the action " + name);
            }
        }
        host::setLogSink([this](int priority, std::string_view, std::string_view message) {
            noteTriggers();
            trace.push_back(reference::logEntry(state(), priority == ANDROID_LOG_ERROR, std::string(message)));
        });
    }

    // Gives the machines the first events, so many. Returns true if there were machines.
    bool run(const std::string& document, const Script& script, std::size_t count) {
        service.reset();
        if (script.world.hasTriggerService) {
            service.emplace();
        }
        const auto configs = manager.parseResponse(document);
        trace.clear();
        const auto forEachMachine = [&](const auto& use) {
            for (const auto& config : configs) {
                const auto& payload = *config->getConfigPayload();
                running = payload.getFiniteStateMachine();
                use(*running);
                noteTriggers();
                trace.push_back(reference::machineEntry(config->getConfigId(), payload.getConfigPayloadId(), state(),
                                                        running->getContext()->timeoutIds));
            }
        };
        forEachMachine([&](FiniteStateMachine& machine) {
            auto context = std::make_unique<support::TestContext>(script.world.context);
            context->timeoutIds = script.world.timeoutIds;
            machine.setContext(std::move(context));
            machine.start();
        });
        for (const auto& [name, timeoutId, attributes] : std::span(script.events).first(count)) {
            const EventType type = registry().getEventTypes().at(name);
            const support::TestTimeoutEvent timeout(attributes, timeoutId);
            const support::TestEvent other(attributes, type);
            forEachMachine([&](FiniteStateMachine& machine) {
                type == EventType::Timeout ? machine.onEvent(timeout) : machine.onEvent(other);
            });
        }
        running = nullptr;
        return !configs.empty();
    }

    reference::Trace trace;

  private:
    void noteTriggers() {
        for (const support::Trigger& each : service ? service->takeTriggers() : std::vector<support::Trigger>()) {
            trace.push_back(reference::triggerEntry(each.triggerName, each.processName, each.metadata));
        }
    }

    std::string state() const { return running == nullptr ? "" : std::string(running->getCurrentState()->getName()); }

    std::optional<support::FakeTriggerService> service;
    const Brenta::OS::VIG::VIGManager manager;
    FiniteStateMachine* running = nullptr;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Library& library = *new Library;
    constexpr std::ptrdiff_t kMostBrackets = 999;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string document(input.substr(0, input.find('\0')));
    if (std::ranges::count_if(document, [](char each) { return each == '[' || each == '{'; }) > kMostBrackets) {
        return -1;
    }
    const Script script(document, input.substr(std::min(size, document.size() + 1)));
    auto& random = Brenta::OS::VIG::PseudoRandomGenerator::ofProcess();
    random.seed(script.seed);
    reference::Engine expected(script.world);
    expected.run(document, script.events);
    random.seed(script.seed);
    const bool hasMachines = library.run(document, script, expected.delivered);
    if (hasMachines != expected.hasMachines() || library.trace != expected.trace) {
        const auto [left, right] = std::ranges::mismatch(expected.trace, library.trace);
        fuzz::fail("reference: " + (left == expected.trace.end() ? "(end)" : *left) +
                   "\nlibrary:   " + (right == library.trace.end() ? "(end)" : *right));
    }
    return 0;
}
