#include "rulesengine/Comparators.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/TestEvent.h"

namespace {
std::atomic<std::size_t> allocations = 0;
}  // namespace

// These take the place of the library's in the whole executable. They are not inlined, lest the compiler takes them for
// mismatched.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = std::malloc(size);
    return memory != nullptr ? memory : (std::abort(), nullptr);
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

template <template <typename, typename> class Comparator, typename T, typename Source>
void addTo(std::vector<std::shared_ptr<Filter>>& passing, FiniteStateMachine& machine, const Source& source,
           T constant) {
    machine.addTransition("start", "end", EventType::Test,
                          {std::make_shared<Comparator<T, std::not_equal_to<>>>(source, constant)}, {});
    passing.push_back(std::make_shared<Comparator<T, std::equal_to<>>>(source, constant));
}

TEST(DeliveringAnEvent, AllocatesNothing) {
    const std::string name = "an attribute name too long for the string object itself";
    FiniteStateMachine machine;
    std::vector<std::shared_ptr<Filter>> passing;
    addTo<EvtAndContextComparator, std::int64_t>(passing, machine, name, 1);
    addTo<EvtAndContextComparator, double>(passing, machine, name, 1.5);
    addTo<EvtAndContextComparator, std::string>(passing, machine, name, name);
    addTo<ReturnValueComparator, std::int64_t>(
        passing, machine, [] { return 1; }, 1);
    addTo<ReturnValueComparator, double>(
        passing, machine, [] { return 1.5; }, 1.5);
    machine.addTransition("start", "end", EventType::Test, passing, {});
    machine.addTransition("end", "start", EventType::EnteringState, {passing.back()}, {});
    const TestEvent with({.int64 = {{name, 1}}, .real = {{name, 1.5}}, .string = {{name, name}}});
    const TestEvent without({});
    const TestEvent otherType({}, EventType::ForegroundAppsStats);
    const std::size_t before = allocations;
    machine.start();
    for (const Event* event : {&with, &without, &otherType}) {
        machine.onEvent(*event);
    }
    EXPECT_EQ(allocations - before, 0U);
    operator delete(operator new(1));
    EXPECT_EQ(allocations - before, 1U) << "nothing is counted";
}

}  // namespace
