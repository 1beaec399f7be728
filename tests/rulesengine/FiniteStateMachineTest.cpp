#include "rulesengine/FiniteStateMachine.h"

#include <gmock/gmock.h>

#include "rulesengine/FuncAction.h"
#include "rulesengine/FuncFilter.h"
#include "rulesengine/TimeoutEvent.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestEvent.h"

namespace {

using namespace Brenta::OS::RulesEngine;
using support::TestEvent;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const TestEvent kTest({});
const TestEvent kZram({}, EventType::ZramHeartBeat);

// A machine whose filters and actions write down that they were called, actions with the state they ran in.
class FiniteStateMachineTest : public testing::Test {
  protected:
    std::shared_ptr<Filter> filter(const std::string& name, bool result) {
        return std::make_shared<FuncFilter>([this, name, result](auto&, auto&) {
            trace.push_back(name);
            return result;
        });
    }

    std::shared_ptr<Action> action(const std::string& name) {
        return std::make_shared<FuncAction>([this, name](auto&, auto&) { trace.push_back(name + "@" + current()); });
    }

    std::string current() { return std::string(machine.getCurrentState()->getName()); }

    // The engine logs nothing, whatever happens.
    void TearDown() override { EXPECT_THAT(log.lines(), IsEmpty()); }

    std::vector<std::string> trace;
    const support::LogCapture log;
    FiniteStateMachine machine;
};

TEST_F(FiniteStateMachineTest, BeginsWithTheStatesStartAndEndOnly) {
    EXPECT_EQ(current(), "start");
    EXPECT_EQ(machine.getOrCreateStateByName("start"), machine.getCurrentState());
    EXPECT_NE(machine.getStateByName("end"), nullptr);
    EXPECT_EQ(machine.getStateByName("idle"), nullptr);
    EXPECT_EQ(machine.getStateByName("idle"), nullptr);
    EXPECT_THAT(machine.getAllListeningEventTypes(), IsEmpty());
    EXPECT_THAT((std::vector{State::START_STATE, State::END_STATE, FiniteStateMachine::STATE_START,
                             FiniteStateMachine::STATE_END}),
                ElementsAre("start", "end", "start", "end"));
}

TEST_F(FiniteStateMachineTest, AddsTheStatesOfATransitionUnderTheirExactNames) {
    constexpr std::string_view kWithNul("a\0b", 3);
    machine.addTransition("", "Start", EventType::Test, {}, {});
    machine.addTransition("start", "end", EventType::Timeout, {}, {});
    machine.addTransition("end", kWithNul, EventType::Test, {}, {});
    EXPECT_EQ(machine.getStateByName("")->getName(), "");
    EXPECT_EQ(machine.getStateByName(kWithNul)->getName(), kWithNul);
    EXPECT_NE(machine.getStateByName("Start"), machine.getStateByName("start"));
    EXPECT_EQ(machine.getStateByName("a"), nullptr);
    EXPECT_THAT(machine.getAllListeningEventTypes(), UnorderedElementsAre(EventType::Test, EventType::Timeout));
}

TEST_F(FiniteStateMachineTest, AsksFiltersInOrderThenRunsEveryActionThenMoves) {
    machine.addTransition("start", "end", EventType::Test, {filter("F1", true), filter("F2", true)},
                          {action("A1"), action("A2")});
    machine.start();
    machine.onEvent(kTest);
    machine.onEvent(kTest);
    EXPECT_THAT(trace, ElementsAre("F1", "F2", "A1@start", "A2@start"));
    EXPECT_EQ(current(), "end");
}

TEST_F(FiniteStateMachineTest, AStateOrATransitionThatIsOfferedAnEventDoesNotMoveTheMachine) {
    machine.addTransition("start", "a", EventType::Test, {filter("F", false)}, {});
    machine.addTransition("start", "end", EventType::Test, {}, {action("A")});
    State& start = *machine.getCurrentState();
    EXPECT_EQ(start.onEvent(kTest), machine.getStateByName("end"));
    EXPECT_EQ(start.onEvent(kZram), nullptr);
    EXPECT_EQ(start.getTransitions()[0]->onEvent(*machine.getContext(), kTest), nullptr);
    EXPECT_EQ(start.getTransitions()[1]->onEvent(*machine.getContext(), kTest), machine.getStateByName("end"));
    EXPECT_THAT(trace, ElementsAre("F", "A@start", "F", "A@start"));
    EXPECT_EQ(current(), "start");
}

TEST_F(FiniteStateMachineTest, StaysWithoutEnteringItsStateAgainWhereNothingFires) {
    machine.addTransition("start", "end", EventType::Test, {filter("F1", false), filter("F2", true)}, {action("A")});
    machine.addTransition("start", "end", EventType::EnteringState, {filter("entering", true)}, {});
    machine.onEvent(kTest);
    machine.onEvent(kZram);
    EXPECT_THAT(trace, ElementsAre("F1"));
    EXPECT_EQ(current(), "start");
}

TEST_F(FiniteStateMachineTest, FiresTheFirstAddedTransitionThatPasses) {
    const auto shared = filter("F", false);
    machine.addTransition("start", "a", EventType::Test, {shared}, {action("A")});
    machine.addTransition("start", "b", EventType::Test, {shared}, {action("B")});
    machine.addTransition("start", "c", EventType::Test, {}, {action("C")});
    machine.addTransition("start", "d", EventType::Test, {filter("G", true)}, {action("D")});
    machine.onEvent(kTest);
    EXPECT_THAT(trace, ElementsAre("F", "F", "C@start"));
    EXPECT_EQ(current(), "c");
}

TEST_F(FiniteStateMachineTest, FollowsEnteringStateTransitionsFromTheStartAndAfterEveryMove) {
    machine.addTransition("start", "a", EventType::EnteringState, {}, {action("A")});
    machine.addTransition("a", "b", EventType::EnteringState, {}, {action("B")});
    machine.addTransition("end", "a", EventType::Test, {}, {action("C")});
    machine.addTransition("b", "b", EventType::Test, {}, {});
    machine.start();
    EXPECT_THAT(trace, ElementsAre("A@start", "B@a"));
    machine.enterState(machine.getStateByName("end"));
    EXPECT_EQ(current(), "end");
    machine.onEvent(kTest);
    EXPECT_THAT(trace, ElementsAre("A@start", "B@a", "C@end", "B@a"));
    machine.enterState(machine.getStateByName("start"));
    EXPECT_EQ(trace.size(), 6U);
    // A move to the state itself is an entry, too.
    machine.addTransition("b", "end", EventType::EnteringState, {}, {});
    machine.onEvent(kTest);
    EXPECT_EQ(current(), "end");
}

TEST_F(FiniteStateMachineTest, StaysWhereItIsWhenAnEnteringStateChainDoesNotEnd) {
    static_assert(FiniteStateMachine::MAX_ENTERING_STATE_MOVES >= 1000);
    int moves = 0;
    const auto count = std::make_shared<FuncAction>([&moves](auto&, auto&) { ++moves; });
    machine.addTransition("start", "a", EventType::Test, {}, {});
    machine.addTransition("a", "b", EventType::EnteringState, {}, {count});
    machine.addTransition("b", "a", EventType::EnteringState, {}, {count});
    machine.addTransition("a", "end", EventType::Test, {}, {});
    machine.onEvent(kTest);
    EXPECT_EQ(moves, FiniteStateMachine::MAX_ENTERING_STATE_MOVES);
    EXPECT_EQ(current(), moves % 2 == 0 ? "a" : "b");
    machine.enterState(machine.getStateByName("a"));
    EXPECT_EQ(moves, 2 * FiniteStateMachine::MAX_ENTERING_STATE_MOVES);
    machine.onEvent(kTest);
    EXPECT_EQ(current(), "end");
}

TEST_F(FiniteStateMachineTest, DisarmsTheTimeoutOfATransitionAfterItsActions) {
    std::set<std::int64_t>& armed = machine.getContext()->timeoutIds;
    armed = {1, 2};
    bool passes = false;
    const auto gate = std::make_shared<FuncFilter>([&](auto&, auto&) { return passes; });
    const auto look = std::make_shared<FuncAction>([&](EvaluationContext& context, auto&) {
        trace.push_back(context.timeoutIds.contains(1) ? "armed" : "disarmed");
    });
    machine.addTransition("start", "start", EventType::Timeout, {gate}, {look});
    machine.onEvent(TimeoutEvent(1));
    EXPECT_THAT(armed, ElementsAre(1, 2));
    passes = true;
    machine.onEvent(TimeoutEvent(1));
    machine.onEvent(TimeoutEvent(-7));
    EXPECT_THAT(armed, ElementsAre(2));
    EXPECT_THAT(trace, ElementsAre("armed", "disarmed"));
    // An event of another type has no timeout, whatever lies where a TimeoutEvent has its.
    struct LookAlike : Event {
        using Event::Event;
        std::int64_t value = 2;
    };
    machine.addTransition("start", "end", EventType::Test, {}, {});
    machine.onEvent(LookAlike(EventType::Test));
    EXPECT_EQ(current(), "end");
    EXPECT_THAT(armed, ElementsAre(2));
}

TEST_F(FiniteStateMachineTest, GivesFiltersAndActionsItsContextAndTheEvent) {
    const auto isArmed = std::make_shared<FuncFilter>([](const EvaluationContext& context, const Event& event) {
        return context.timeoutIds.contains(*event.getInt64Attr("id"));
    });
    const auto arm = std::make_shared<FuncAction>(
        [](EvaluationContext& context, const Event& event) { context.timeoutIds.insert(*event.getInt64Attr("id")); });
    machine.addTransition("start", "end", EventType::Test, {isArmed}, {});
    machine.addTransition("start", "start", EventType::Test, {}, {arm});
    machine.onEvent(TestEvent({.int64 = {{"id", 5}}}));
    EXPECT_THAT(machine.getContext()->timeoutIds, ElementsAre(5));
    EXPECT_EQ(current(), "start");
    machine.onEvent(TestEvent({.int64 = {{"id", 5}}}));
    EXPECT_EQ(current(), "end");
}

TEST_F(FiniteStateMachineTest, LetsAnEventDecideWithTheContextWhatItMatches) {
    struct PickyEvent : Event {
        using Event::Event;
        bool matches(EventType eventType, const EvaluationContext& context) const override {
            return eventType == EventType::Test && !context.timeoutIds.empty();
        }
    };
    machine.addTransition("start", "end", EventType::ZramHeartBeat, {}, {});
    machine.addTransition("start", "a", EventType::Test, {}, {});
    machine.onEvent(PickyEvent(EventType::ZramHeartBeat));
    EXPECT_EQ(current(), "start");
    machine.getContext()->timeoutIds = {1};
    machine.onEvent(PickyEvent(EventType::ZramHeartBeat));
    EXPECT_EQ(current(), "a");
}

TEST_F(FiniteStateMachineTest, DestroysAReplacedContextAtOnceAndItsOwnBeforeTheStates) {
    struct Witness {
        ~Witness() { trace.push_back(name); }
        std::vector<std::string>& trace;
        const std::string name;
    };
    struct WitnessContext : EvaluationContext {
        explicit WitnessContext(Witness* owned) : witness(owned) {}
        const std::unique_ptr<Witness> witness;
    };
    {
        FiniteStateMachine mortal(std::make_unique<WitnessContext>(new Witness{trace, "first context"}));
        mortal.addTransition("start", "end", EventType::Test, {},
                             {std::make_shared<FuncAction>(
                                 [witness = std::shared_ptr<Witness>(new Witness{trace, "action"})](auto&, auto&) {})});
        mortal.setContext(std::make_unique<WitnessContext>(new Witness{trace, "second context"}));
        EXPECT_THAT(trace, ElementsAre("first context"));
    }
    EXPECT_THAT(trace, ElementsAre("first context", "second context", "action"));
}

}  // namespace
