#include "rulesengine/FiniteStateMachine.h"

#include <gmock/gmock.h>

#include <sstream>

#include "rulesengine/FuncAction.h"
#include "rulesengine/FuncFilter.h"
#include "rulesengine/TimeoutEvent.h"
#include "tests/support/TestEvent.h"

namespace {

using namespace Brenta::OS::RulesEngine;
using support::TestEvent;
using testing::ElementsAre;
using testing::IsEmpty;

const TestEvent kTest({});
const TestEvent kZram({}, EventType::ZramHeartBeat);

// A machine whose filters and actions write down that they were called, actions with the state they ran in.
class FiniteStateMachineTest : public testing::Test {
  protected:
    // `pieces` names filters that pass ("F+") or do not ("F-"), and actions ("A").
    void add(std::string_view from, std::string_view to, EventType type, const std::string& pieces = "") {
        std::vector<std::shared_ptr<Filter>> filters;
        std::vector<std::shared_ptr<Action>> actions;
        std::istringstream words(pieces);
        for (std::string word; words >> word;) {
            if (word.back() == '+' || word.back() == '-') {
                filters.push_back(std::make_shared<FuncFilter>([this, word](auto&, auto&) {
                    trace += word + " ";
                    return word.back() == '+';
                }));
            } else {
                actions.push_back(std::make_shared<FuncAction>(
                    [this, word](auto&, auto&) { trace += word + "@" + current() + " "; }));
            }
        }
        machine.addTransition(from, to, type, filters, actions);
    }

    std::string current() { return std::string(machine.getCurrentState()->getName()); }

    // Tells what was called since the last time, and the state that is current now.
    std::string told() { return std::exchange(trace, "") + "-> " + current(); }

    std::string after(const Event& event) {
        machine.onEvent(event);
        return told();
    }

    std::string trace;
    FiniteStateMachine machine;
};

TEST_F(FiniteStateMachineTest, BeginsWithTwoStatesAndAddsThoseOfATransitionUnderTheirExactNames) {
    constexpr std::string_view kWithNul("a\0b", 3);
    EXPECT_EQ(current(), "start");
    EXPECT_EQ(machine.getOrCreateStateByName("start"), machine.getCurrentState());
    EXPECT_NE(machine.getStateByName("end"), nullptr);
    EXPECT_EQ(machine.getStateByName("idle"), nullptr);
    EXPECT_EQ(machine.getStateByName("idle"), nullptr);
    EXPECT_THAT(machine.getAllListeningEventTypes(), IsEmpty());
    EXPECT_THAT((std::vector{State::START_STATE, State::END_STATE, FiniteStateMachine::STATE_START,
                             FiniteStateMachine::STATE_END}),
                ElementsAre("start", "end", "start", "end"));
    add("", "Start", EventType::Test);
    add("start", "end", EventType::Timeout);
    add("end", kWithNul, EventType::Test);
    for (const std::string_view name : {std::string_view(), std::string_view("Start"), kWithNul}) {
        EXPECT_EQ(machine.getStateByName(name)->getName(), name);
    }
    EXPECT_EQ(machine.getStateByName("a"), nullptr);
    EXPECT_THAT(machine.getAllListeningEventTypes(),
                testing::UnorderedElementsAre(EventType::Test, EventType::Timeout));
}

TEST_F(FiniteStateMachineTest, FiresTheFirstAddedTransitionThatPassesRunsEveryActionThenMoves) {
    add("start", "a", EventType::Test, "F- G+ A");
    add("start", "b", EventType::Test, "F+ G+ A B");
    add("start", "c", EventType::Test, "H+ C");
    add("start", "end", EventType::EnteringState, "F-");
    machine.start();
    EXPECT_EQ(told(), "F- -> start");
    EXPECT_EQ(after(kZram), "-> start");
    EXPECT_EQ(after(kTest), "F- F+ G+ A@start B@start -> b");
    EXPECT_EQ(after(kTest), "-> b");
}

TEST_F(FiniteStateMachineTest, AStateOrATransitionThatIsOfferedAnEventDoesNotMoveTheMachine) {
    add("start", "a", EventType::Test, "F-");
    add("start", "end", EventType::Test, "A");
    State& start = *machine.getCurrentState();
    EXPECT_EQ(start.onEvent(kTest), machine.getStateByName("end"));
    EXPECT_EQ(start.onEvent(kZram), nullptr);
    EXPECT_EQ(start.getTransitions()[0]->onEvent(*machine.getContext(), kTest), nullptr);
    EXPECT_EQ(start.getTransitions()[1]->onEvent(*machine.getContext(), kTest), machine.getStateByName("end"));
    EXPECT_EQ(told(), "F- A@start F- A@start -> start");
}

TEST_F(FiniteStateMachineTest, FollowsEnteringStateTransitionsFromTheStartAndAfterEveryMove) {
    add("start", "a", EventType::EnteringState, "A");
    add("a", "b", EventType::EnteringState, "B");
    add("end", "a", EventType::Test, "C");
    add("b", "b", EventType::Test);
    machine.start();
    EXPECT_EQ(told(), "A@start B@a -> b");
    machine.enterState(machine.getStateByName("end"));
    EXPECT_EQ(told(), "-> end");
    EXPECT_EQ(after(kTest), "C@end B@a -> b");
    machine.enterState(machine.getStateByName("start"));
    EXPECT_EQ(told(), "A@start B@a -> b");
    // A move to the state itself is an entry, too.
    add("b", "end", EventType::EnteringState);
    EXPECT_EQ(after(kTest), "-> end");
}

TEST_F(FiniteStateMachineTest, StaysWhereItIsWhenAnEnteringStateChainDoesNotEnd) {
    static_assert(FiniteStateMachine::MAX_ENTERING_STATE_MOVES >= 1000);
    int moves = 0;
    const auto count = std::make_shared<FuncAction>([&moves](auto&, auto&) { ++moves; });
    add("start", "a", EventType::Test);
    machine.addTransition("a", "b", EventType::EnteringState, {}, {count});
    machine.addTransition("b", "a", EventType::EnteringState, {}, {count});
    add("a", "end", EventType::Test);
    machine.onEvent(kTest);
    EXPECT_EQ(moves, FiniteStateMachine::MAX_ENTERING_STATE_MOVES);
    EXPECT_EQ(current(), moves % 2 == 0 ? "a" : "b");
    machine.enterState(machine.getStateByName("a"));
    EXPECT_EQ(moves, 2 * FiniteStateMachine::MAX_ENTERING_STATE_MOVES);
    EXPECT_EQ(after(kTest), "-> end");
}

TEST_F(FiniteStateMachineTest, DisarmsTheTimeoutOfATransitionAfterItsActions) {
    std::set<std::int64_t>& armed = machine.getContext()->timeoutIds;
    armed = {1, 2};
    bool passes = false;
    const auto gate = std::make_shared<FuncFilter>([&](auto&, auto&) { return passes; });
    const auto look = std::make_shared<FuncAction>(
        [&](EvaluationContext& context, auto&) { trace += context.timeoutIds.contains(1) ? "armed " : "disarmed "; });
    machine.addTransition("start", "start", EventType::Timeout, {gate}, {look});
    machine.onEvent(TimeoutEvent(1));
    EXPECT_THAT(armed, ElementsAre(1, 2));
    passes = true;
    machine.onEvent(TimeoutEvent(1));
    EXPECT_EQ(after(TimeoutEvent(-7)), "armed disarmed -> start");
    EXPECT_THAT(armed, ElementsAre(2));
    // An event of another type has no timeout, whatever lies where a TimeoutEvent has its.
    struct LookAlike : Event {
        using Event::Event;
        std::int64_t value = 2;
    };
    add("start", "end", EventType::Test);
    EXPECT_EQ(after(LookAlike(EventType::Test)), "-> end");
    EXPECT_THAT(armed, ElementsAre(2));
}

TEST_F(FiniteStateMachineTest, GivesEventsFiltersAndActionsItsContextAndTheEvent) {
    struct PickyEvent : TestEvent {
        using TestEvent::TestEvent;
        bool matches(EventType eventType, const EvaluationContext& context) const override {
            return eventType == (context.timeoutIds.empty() ? EventType::Test : EventType::Timeout);
        }
    };
    const auto isArmed = std::make_shared<FuncFilter>([](const EvaluationContext& context, const Event& event) {
        return context.timeoutIds.contains(*event.getInt64Attr("id"));
    });
    const auto arm = std::make_shared<FuncAction>(
        [](EvaluationContext& context, const Event& event) { context.timeoutIds.insert(*event.getInt64Attr("id")); });
    const PickyEvent event({.int64 = {{"id", 5}}}, EventType::ZramHeartBeat);
    add("start", "end", EventType::ZramHeartBeat);
    machine.addTransition("start", "end", EventType::Test, {isArmed}, {});
    machine.addTransition("start", "a", EventType::Test, {}, {arm});
    EXPECT_EQ(after(event), "-> a");
    EXPECT_THAT(machine.getContext()->timeoutIds, ElementsAre(5));
    add("a", "end", EventType::Test);
    EXPECT_EQ(after(event), "-> a");
}

TEST_F(FiniteStateMachineTest, DestroysAReplacedContextAtOnceAndItsOwnBeforeTheStates) {
    struct Witness {
        ~Witness() { trace += name; }
        std::string& trace;
        const std::string name;
    };
    struct WitnessContext : EvaluationContext {
        explicit WitnessContext(Witness* owned) : witness(owned) {}
        const std::unique_ptr<Witness> witness;
    };
    {
        FiniteStateMachine mortal(std::make_unique<WitnessContext>(new Witness{trace, "first context "}));
        std::shared_ptr<Witness> witness(new Witness{trace, "action "});
        mortal.addTransition("start", "end", EventType::Test, {},
                             {std::make_shared<FuncAction>([own = std::move(witness)](auto&, auto&) {})});
        mortal.setContext(std::make_unique<WitnessContext>(new Witness{trace, "second context "}));
        EXPECT_EQ(trace, "first context ");
    }
    EXPECT_EQ(trace, "first context second context action ");
}

}  // namespace
