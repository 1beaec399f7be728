#include "rulesengine/Comparators.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>

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

constexpr Outcomes kLess = {false, true, false, true, false, true};
constexpr Outcomes kEqual = {true, false, false, false, true, true};
constexpr Outcomes kGreater = {false, true, true, false, true, false};
constexpr Outcomes kUnordered = {false, true, false, false, false, false};
constexpr Outcomes kNever = {};

template <template <typename, typename> class Comparator, typename T, typename Source>
Outcomes outcomes(const Source& source, const T& constant, const EvaluationContext& context, const Event& event) {
    return {Comparator<T, std::equal_to<>>(source, constant)(context, event),
            Comparator<T, std::not_equal_to<>>(source, constant)(context, event),
            Comparator<T, std::greater<>>(source, constant)(context, event),
            Comparator<T, std::less<>>(source, constant)(context, event),
            Comparator<T, std::greater_equal<>>(source, constant)(context, event),
            Comparator<T, std::less_equal<>>(source, constant)(context, event)};
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
struct Case {
    T value;
    T constant;
    Outcomes expected;
};

template <typename T>
void expectOfBothFamilies(const std::initializer_list<Case<T>>& cases) {
    for (const auto& [value, constant, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(value) + " and " + testing::PrintToString(constant));
        EXPECT_EQ(compare(constant, x(value), {}), expected);
        EXPECT_EQ(compare(constant, {}, x(value)), expected);
        const std::function<T()> function = [&value = value] { return value; };
        EXPECT_EQ(outcomes<ReturnValueComparator>(function, constant, TestContext({}), TestEvent({})), expected);
    }
}

TEST(Comparators, CompareIntegersSignedDoublesExactlyAndStringsByUnsignedBytes) {
    // The two greater ones are one and the same as doubles.
    expectOfBothFamilies<std::int64_t>({{-1, 0, kLess},
                                        {INT64_MIN, INT64_MAX, kLess},
                                        {9007199254740993, 9007199254740992, kGreater},
                                        {7, 7, kEqual}});
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    expectOfBothFamilies<double>({{0.1 + 0.2, 0.3, kGreater},
                                  {0.3, 0.3, kEqual},
                                  {-0.0, 0.0, kEqual},
                                  {-infinity, infinity, kLess},
                                  {nan, 1.0, kUnordered},
                                  {1.0, nan, kUnordered},
                                  {nan, nan, kUnordered}});
    const std::string withNul("a\0b", 3);
    expectOfBothFamilies<std::string>({{"abd", "abcz", kGreater},
                                       {"ab", "abc", kLess},
                                       {"Z", "a", kLess},
                                       {"\xC3\xA4", "z", kGreater},
                                       {"10", "9", kLess},
                                       {withNul, "a", kGreater},
                                       {"a", withNul, kLess},
                                       {"same", "same", kEqual}});
}

TEST(Comparators, PreferTheEventToTheContextAndFailWithoutANumber) {
    EXPECT_EQ(compare<std::int64_t>(5, x(std::int64_t{1}), x(std::int64_t{9})), kLess);
    EXPECT_EQ(compare(5.0, x(1.0), x(9.0)), kLess);
    EXPECT_EQ(compare<std::string>("b", x("a"), x("c")), kLess);
    EXPECT_EQ(compare<std::string>("b", x(""), x("c")), kGreater);
    EXPECT_EQ(compare<std::int64_t>(0, {}, {}), kNever);
    EXPECT_EQ(compare(0.0, {}, {}), kNever);
    EXPECT_EQ(compare<std::string>("", {}, {}), kEqual);
    EXPECT_EQ(compare<std::string>("a", {}, {}), kLess);
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
