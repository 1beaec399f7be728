#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <array>
#include <memory>
#include <vector>

#include "bench/BenchEvent.h"
#include "bench/ByHand.h"
#include "bench/Machine.h"
#include "bench/Rules.h"
#include "bench/Scenario.h"
#include "rulesengine/FiniteStateMachine.h"

namespace bench {

namespace {

using Brenta::OS::RulesEngine::EvaluationContext;
using Brenta::OS::RulesEngine::FiniteStateMachine;

constexpr std::array kKinds = {"integer", "double", "string"};
constexpr std::array kByHand = {byhand::integerRule, byhand::doubleRule, byhand::stringRule};

void addOtherTypes(std::vector<Scenario>& scenarios, std::size_t count) {
    scenarios.push_back({fmt::format("other types/{}/vig", count), 256, [count]() -> Scenario::Loop {
                             auto machine = std::make_shared<FiniteStateMachine>();
                             for (std::size_t i = 0; i < count; ++i) {
                                 machine->addTransition("start", "end", EventType::ZramHeartBeat, {}, {});
                             }
                             return [machine](std::size_t times) {
                                 const MemoryEvent event;
                                 return timed(times, [&] { machine->onEvent(event); });
                             };
                         }});
    scenarios.push_back(
        {fmt::format("other types/{}/by hand", count), 256, [count]() -> Scenario::Loop {
             const std::vector<EventType> types(count, EventType::ZramHeartBeat);
             return [types](std::size_t times) {
                 const MemoryEvent event;
                 const EvaluationContext context;
                 return timed(times, [&] { benchmark::DoNotOptimize(byhand::matchesAny(types, context, event)); });
             };
         }});
}

void addFilters(std::vector<Scenario>& scenarios, Kind kind, std::size_t count, bool lastIsFalse) {
    const auto index = static_cast<std::size_t>(kind);
    const std::string name = fmt::format("filters/{} {}{}", count, kKinds[index], lastIsFalse ? ", last false" : "");
    scenarios.push_back({name + "/vig", 256, [=]() -> Scenario::Loop {
                             const auto machine = machineOf(document(kind, conditions(kind, count, lastIsFalse)));
                             return [machine](std::size_t times) {
                                 const MemoryEvent event;
                                 return timed(times, [&] { machine.fsm->onEvent(event); });
                             };
                         }});
    scenarios.push_back({name + "/by hand", 256, [=]() -> Scenario::Loop {
                             const byhand::Rule rule = kByHand[index](count, lastIsFalse);
                             return [rule](std::size_t times) {
                                 const MemoryEvent event;
                                 const EvaluationContext context;
                                 return timed(times, [&] { benchmark::DoNotOptimize(rule(context, event)); });
                             };
                         }});
}

}  // namespace

void addEngine(std::vector<Scenario>& scenarios) {
    for (const std::size_t count : {1, 8, 64, 512}) {
        addOtherTypes(scenarios, count);
    }
    for (const Kind kind : {Kind::Integer, Kind::Double, Kind::String}) {
        for (const std::size_t count : {1, 3, 10}) {
            addFilters(scenarios, kind, count, false);
            addFilters(scenarios, kind, count, true);
        }
    }
}

}  // namespace bench
