#include <android/log.h>
#include <host/Host.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/JsonMutator.h"
#include "fuzz/NaiveEngine.h"
#include "fuzz/Script.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/TestEvent.h"
#include "vig/EventTypeNames.h"
#include "vig/VIGManager.h"
#include "vig/actions/PseudoRandomGenerator.h"

// A rule document and, after a NUL, the events for its machines, of which Script.h tells the form. The library and the
// naive engine must do the same with them.

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using Brenta::OS::VIG::VIGManager;

support::Attributes toSupport(const naive::Attributes& from) {
    return {from.uint64, from.int64, from.real, from.boolean, from.string};
}

// The library, seen as the naive engine shows itself.
class Library {
  public:
    Library() {
        host::setLogSink([this](int priority, std::string_view, std::string_view message) {
            noteTriggers();
            trace.push_back(naive::logEntry(state(), priority == ANDROID_LOG_ERROR, std::string(message)));
        });
    }

    // With the first events, so many. Whether there were machines.
    bool run(const naive::World& world, const std::string& document, const std::vector<naive::Event>& events,
             std::size_t count) {
        Brenta::OS::VIG::PseudoRandomGenerator::ofProcess().seed(world.seed);
        service.reset();
        if (world.hasTriggerService) {
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
                trace.push_back(naive::machineEntry(config->getConfigId(), payload.getConfigPayloadId(), state(),
                                                    running->getContext()->timeoutIds));
            }
        };
        forEachMachine([&](FiniteStateMachine& machine) {
            auto context = std::make_unique<support::TestContext>(toSupport(world.context));
            context->timeoutIds = world.timeoutIds;
            machine.setContext(std::move(context));
            machine.start();
        });
        for (std::size_t i = 0; i < count; ++i) {
            forEachMachine([&](FiniteStateMachine& machine) { deliver(machine, events[i]); });
        }
        running = nullptr;
        return !configs.empty();
    }

    naive::Trace trace;

  private:
    static void deliver(FiniteStateMachine& machine, const naive::Event& event) {
        const auto& types = Brenta::OS::VIG::kEventTypeNames.pairs;
        const auto type = std::ranges::find(types, event.type, [](const auto& each) { return each.second; })->first;
        if (type == EventType::Timeout) {
            machine.onEvent(support::TestTimeoutEvent(toSupport(event.attributes), event.timeoutId));
        } else {
            machine.onEvent(support::TestEvent(toSupport(event.attributes), type));
        }
    }

    // Those since the last entry.
    void noteTriggers() {
        for (const support::Trigger& each : service ? service->takeTriggers() : std::vector<support::Trigger>()) {
            trace.push_back(naive::triggerEntry(each.triggerName, each.processName.value(), each.metadata));
        }
    }

    std::string state() const { return running == nullptr ? "" : std::string(running->getCurrentState()->getName()); }

    std::optional<support::FakeTriggerService> service;
    const VIGManager manager;
    FiniteStateMachine* running = nullptr;
};

// What the inputs did, told at the end of the run.
struct Shares {
    unsigned long inputs = 0;
    unsigned long accepted = 0;
    unsigned long fired = 0;

    ~Shares() {
        std::fprintf(stderr, "shares: %lu %% of the documents accepted with machines, %lu %% fired transitions\n",
                     100 * accepted / std::max(inputs, 1UL), 100 * fired / std::max(inputs, 1UL));
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Library& library = *new Library;
    static Shares shares;
    constexpr std::ptrdiff_t kMostBrackets = 999;
    const fuzz::Input input(std::string_view(reinterpret_cast<const char*>(data), size));
    if (std::ranges::count_if(input.document, [](char each) { return each == '[' || each == '{'; }) > kMostBrackets) {
        return -1;
    }
    const fuzz::Script script = fuzz::scriptOf(input);
    const naive::Outcome expected = naive::run(script.world, input.document, script.events);
    const bool hasMachines = library.run(script.world, input.document, script.events, expected.delivered);
    if (hasMachines != expected.hasMachines || library.trace != expected.trace) {
        const auto [left, right] = std::ranges::mismatch(expected.trace, library.trace);
        std::fprintf(stderr, "naive:   %s\nlibrary: %s\n", left == expected.trace.end() ? "(end)" : left->c_str(),
                     right == library.trace.end() ? "(end)" : right->c_str());
        std::abort();
    }
    ++shares.inputs;
    shares.accepted += expected.hasMachines ? 1 : 0;
    shares.fired += expected.fired > 0 ? 1 : 0;
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    const fuzz::Input input(std::string_view(reinterpret_cast<const char*>(data), size));
    constexpr std::size_t kMostScript = 256;
    if (seed % 3 == 0) {
        const std::size_t room = std::min(kMostScript, most - std::min(most, input.document.size() + 1));
        return fuzz::putInput(data, input.document + '\0' + fuzz::mutatedBytes(std::string(input.script), room), most);
    }
    const std::size_t room = most - std::min(most, input.script.size() + 1);
    return fuzz::putInput(data, fuzz::mutatedJson(input.document, room, seed) + '\0' + std::string(input.script), most);
}
