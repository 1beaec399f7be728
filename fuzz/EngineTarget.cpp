#include <android/log.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <host/Host.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "fuzz/Inputs.h"
#include "fuzz/ReferenceEngine.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/FakeTriggerService.h"
#include "tests/support/TestEvent.h"
#include "tools/vig/document/Registry.h"
#include "vig/VIGManager.h"
#include "vig/functions/PseudoRandomGenerator.h"

// A rule document and, after the first NUL, bytes that stand for what its machines are given. The library and the
// reference engine must do the same with them.

namespace {

using Brenta::OS::RulesEngine::EventType;
using Brenta::OS::RulesEngine::FiniteStateMachine;
using namespace std::string_literals;
using Strings = std::vector<std::string>;

const auto& registry() {
    static const auto registry = Brenta::OS::VIG::Tool::libraryRegistry();
    return registry;
}

// Every script stands for something. Most attributes have names and values that the document compares.
class Script {
  public:
    Script(const std::string& document, std::string_view script)
        : bytes(reinterpret_cast<const std::uint8_t*>(script.data()), script.size()) {
        for (const auto& [name, type] : registry().getEventTypes()) {
            world.eventTypes.insert(name);
        }
        types.assign(world.eventTypes.begin(), world.eventTypes.end());
        constexpr std::size_t kWeight = 20;  // most events are of types that the document listens for
        for (const fuzz::Value& value : fuzz::valuesIn(document)) {
            const std::string text = document.substr(value.begin, value.end - value.begin);
            const std::string content = text.size() < 2 ? "" : text.substr(1, text.size() - 2);
            if (value.key == "event" && world.eventTypes.contains(content)) {
                types.insert(types.end(), kWeight, content);
            } else if (value.key == "value" && isPlain(content)) {
                texts.push_back(content);
            }
        }
        constexpr std::size_t kMostEvents = 24;
        world.functions = {registry().getDoublePureFunctions().begin(), registry().getDoublePureFunctions().end()};
        world.context = attributes();
        world.timeoutIds = {0, 1, 2};
        world.hasTriggerService = bytes.ConsumeBool();
        seed = bytes.ConsumeIntegral<std::uint8_t>();
        while (bytes.remaining_bytes() > 0 && events.size() < kMostEvents) {
            events.push_back({pick(types), upTo(3), attributes()});
        }
    }

    reference::World world;
    unsigned seed;
    std::vector<reference::Event> events;

  private:
    // JSON and UTF-8 make nothing else of it.
    static bool isPlain(const std::string& text) {
        return std::ranges::all_of(text, [](char each) { return each >= ' ' && each < '\x7f' && each != '\\'; });
    }

    int upTo(int most) { return bytes.ConsumeIntegralInRange(0, most); }

    const std::string& pick(const Strings& list) {
        return list[static_cast<std::size_t>(upTo(static_cast<int>(list.size()) - 1))];
    }

    support::Attributes attributes() {
        support::Attributes result;
        int kinds = upTo(63);
        const auto add = [&]<typename T>(support::NamedValues<T>& values) {
            if (kinds % 2 != 0) {
                const std::string& name = pick(texts);
                values.emplace_back(name, value<T>());
            }
            kinds /= 2;
        };
        add(result.uint64), add(result.int64), add(result.real), add(result.boolean), add(result.string);
        if (kinds != 0) {  // so that triggers succeed
            result.int64.insert(result.int64.end(), {{"vmRssKB", value<std::int64_t>()}, {"vmSwapKB", 1}});
            result.real.emplace_back("cpuAvgUtilization", value<double>());
            result.string.emplace_back("processName", pick(texts));
        }
        return result;
    }

    // Returns one in or near a value of the document, or an extreme one.
    template <typename T>
    T value() {
        if constexpr (std::is_same_v<T, std::string>) {
            return pick(texts);
        } else {
            constexpr auto kLimits = std::numeric_limits<T>();
            constexpr double kExact = 1e15;  // so far a double is an integer
            const int kind = upTo(7);
            const T limits[] = {kLimits.max(), kLimits.lowest(), kLimits.quiet_NaN()};
            const double number = std::strtod(pick(texts).c_str(), nullptr) + (kind - 5);
            return kind < 3 ? limits[kind]
                            : static_cast<T>(std::fmax(std::fmin(number, kExact), std::is_signed_v<T> ? -kExact : 0));
        }
    }

    FuzzedDataProvider bytes;
    Strings types;
    Strings texts = {"",
                     "7",
                     "processName",
                     "vmRssKB",
                     "vmSwapKB",
                     "cpuAvgUtilization",
                     "memUsedMaxBytes",
                     "numCompressedDataBytes",
                     "camera\0evil"s};
};

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
