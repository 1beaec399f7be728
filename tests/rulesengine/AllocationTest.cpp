#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "rulesengine/Comparators.h"
#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/TestEvent.h"

namespace {
std::atomic<std::size_t> allocations = 0;
}  // namespace

// In place of the library's, for the whole executable. Not inlined, lest the compiler takes them for mismatched.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size)) {
        return memory;
    }
    std::abort();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace {

using namespace Brenta::OS::RulesEngine;
using support::TestEvent;

const std::string kName = "an attribute name too long for the string object itself";

// Delivers an event to a machine whose transitions have the filter.
template <typename Comparator, typename Source, typename T>
void expectNoAllocation(const Source& source, const T& constant, const Event& event) {
    FiniteStateMachine machine;
    const auto filter = std::make_shared<Comparator>(source, constant);
    machine.addTransition("start", "end", EventType::ZramHeartBeat, {filter}, {});
    machine.addTransition("start", "end", EventType::Test, {filter}, {});
    machine.addTransition("end", "start", EventType::EnteringState, {filter}, {});
    const std::size_t before = allocations;
    machine.start();
    machine.onEvent(event);
    EXPECT_EQ(allocations - before, 0U);
}

// One of the operators lets the event pass.
template <template <typename, typename> class Comparator, typename T, typename Source>
void expectNoAllocationPassingOrNot(const Source& source, const T& constant, const Event& event) {
    expectNoAllocation<Comparator<T, std::equal_to<>>>(source, constant, event);
    expectNoAllocation<Comparator<T, std::not_equal_to<>>>(source, constant, event);
}

TEST(DeliveringAnEvent, AllocatesNothing) {
    const TestEvent with({.int64 = {{kName, 1}}, .real = {{kName, 1.5}}, .string = {{kName, kName}}});
    const TestEvent without({});
    const TestEvent otherType({}, EventType::ForegroundAppsStats);
    for (const Event* event : {&with, &without, &otherType}) {
        expectNoAllocationPassingOrNot<EvtAndContextComparator, std::int64_t>(kName, 1, *event);
        expectNoAllocationPassingOrNot<EvtAndContextComparator, double>(kName, 1.5, *event);
        expectNoAllocationPassingOrNot<EvtAndContextComparator, std::string>(kName, kName, *event);
        expectNoAllocationPassingOrNot<ReturnValueComparator, std::int64_t>([] { return 1; }, 1, *event);
        expectNoAllocationPassingOrNot<ReturnValueComparator, double>([] { return 1.5; }, 1.5, *event);
    }
    const std::size_t before = allocations;
    operator delete(operator new(1));
    EXPECT_EQ(allocations - before, 1U) << "nothing is counted";
}

}  // namespace
