#include "rulesengine/Comparators.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
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
using support::Attributes;
using support::TestContext;
using support::TestEvent;

// The six operators give these, in the order ==, !=, >, <, >=, <=.
using Outcomes = std::array<bool, 6>;

template <typename T>
Outcomes outcomesOf(const T& value, const T& constant) {
    return {value == constant, value != constant, value > constant,
            value < constant,  value >= constant, value <= constant};
}

template <template <typename, typename> class Comparator, typename T, typename Source>
Outcomes outcomes(const Source& source, const T& constant, const EvaluationContext& context, const Event& event) {
    const auto by = [&](auto op) { return Comparator<T, decltype(op)>(source, constant)(context, event); };
    return {by(std::equal_to()), by(std::not_equal_to()),  by(std::greater()),
            by(std::less()),     by(std::greater_equal()), by(std::less_equal())};
}

Attributes x(std::int64_t value) {
    return {.int64 = {{"x", value}}};
}
Attributes x(double value) {
    return {.real = {{"x", value}}};
}
Attributes x(const std::string& value) {
    return {.string = {{"x", value}}};
}

// The attribute "x" against a constant.
template <typename T>
Outcomes compare(const T& constant, Attributes inEvent, Attributes inContext) {
    return outcomes<EvtAndContextComparator>(std::string("x"), constant, TestContext(std::move(inContext)),
                                             TestEvent(std::move(inEvent)));
}

template <typename T>
void expectOfBothFamilies(const std::vector<T>& values) {
    for (const T& value : values) {
        for (const T& constant : values) {
            SCOPED_TRACE(testing::PrintToString(value) + " and " + testing::PrintToString(constant));
            const Outcomes expected = outcomesOf(value, constant);
            EXPECT_EQ(compare(constant, x(value), {}), expected);
            EXPECT_EQ(compare(constant, {}, x(value)), expected);
            const std::function<T()> function = [&value] { return value; };
            EXPECT_EQ(outcomes<ReturnValueComparator>(function, constant, TestContext({}), TestEvent({})), expected);
        }
    }
}

TEST(Comparators, CompareIntegersSignedDoublesExactlyAndStringsByUnsignedBytes) {
    // The last two are one and the same as doubles.
    expectOfBothFamilies<std::int64_t>({-1, 0, INT64_MIN, INT64_MAX, 9007199254740993, 9007199254740992});
    expectOfBothFamilies<double>({0.1 + 0.2, 0.3, -0.0, 0.0, -INFINITY, INFINITY, NAN});
    expectOfBothFamilies<std::string>({"", "abd", "abcz", "ab", "Z", "\xC3\xA4", "10", "9", std::string("ab\0b", 4)});
}

TEST(Comparators, PreferTheEventToTheContextAndFailWithoutANumber) {
    EXPECT_EQ(compare<std::int64_t>(5, x(std::int64_t{1}), x(std::int64_t{9})), outcomesOf(1, 5));
    EXPECT_EQ(compare(5.0, x(1.0), x(9.0)), outcomesOf(1, 5));
    EXPECT_EQ(compare<std::string>("b", x("a"), x("c")), outcomesOf('a', 'b'));
    EXPECT_EQ(compare<std::string>("b", x(""), x("c")), outcomesOf('c', 'b'));
    EXPECT_EQ(compare<std::int64_t>(0, {}, {}), Outcomes());
    EXPECT_EQ(compare(0.0, {}, {}), Outcomes());
    EXPECT_EQ(compare<std::string>("a", {}, {}), outcomesOf(0, 1));
}

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
