#include "rulesengine/Event.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "rulesengine/Action.h"
#include "rulesengine/EvaluationContext.h"
#include "rulesengine/Filter.h"
#include "rulesengine/FiniteStateMachine.h"
#include "rulesengine/TimeoutEvent.h"
#include "tests/support/Slots.h"
#include "vig/EventTypeNames.h"

namespace {

using namespace Brenta::OS::RulesEngine;
using support::slotOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::pair<EventType, std::uint32_t> kTypes[] = {{EventType::EnteringState, 0},
                                                          {EventType::Timeout, 1},
                                                          {EventType::Test, 2},
                                                          {EventType::TelemetryEventBegin, 1000},
                                                          {EventType::ProcessMemoryHeartBeat, 1001},
                                                          {EventType::SystemMemoryHeartBeat, 1002},
                                                          {EventType::ZramHeartBeat, 1003},
                                                          {EventType::ProcessCpuHeartBeat, 1004},
                                                          {EventType::ForegroundAppsStats, 1005},
                                                          {EventType::TelemetryEventEnd, 2000}};

static_assert(std::size(kTypes) == Brenta::OS::VIG::kEventTypeNames.pairs.size());

template <typename Source>
void expectNoAttributes(const Source& source) {
    EXPECT_EQ(source.getUint64Attr("x"), std::nullopt);
    EXPECT_EQ(source.getInt64Attr("x"), std::nullopt);
    EXPECT_EQ(source.getDoubleAttr("x"), std::nullopt);
    EXPECT_EQ(source.getBoolAttr("x"), std::nullopt);
    EXPECT_EQ(source.getStringAttr("x"), "");
}

TEST(Event, WithoutOverridesHasNoAttributesAndMatchesItsOwnTypeOnly) {
    const EvaluationContext context;
    expectNoAttributes(context);
    EXPECT_THAT(context.timeoutIds, IsEmpty());
    const auto expectBare = [&context](const Event& event, EventType own) {
        expectNoAttributes(event);
        for (int kind = 0; kind < 5; ++kind) {
            EXPECT_THAT(event.keys(static_cast<Event::ValueType>(kind)), IsEmpty());
        }
        for (const auto& [type, value] : kTypes) {
            EXPECT_EQ(event.matches(type, context), type == own);
        }
    };
    for (const auto& [type, value] : kTypes) {
        EXPECT_EQ(static_cast<std::uint32_t>(type), value);
        expectBare(Event(type), type);
    }
    expectBare(Event::ENTERING_STATE, EventType::EnteringState);
    expectBare(EnteringStateEvent(), EventType::EnteringState);
    expectBare(TimeoutEvent(3), EventType::Timeout);
}

// Clients are compiled against this order.
TEST(Interfaces, HaveTheirVirtualOperationsInAFixedOrder) {
    using Context = EvaluationContext;
    EXPECT_THAT(
        (std::vector{slotOf(&Event::matches), slotOf(&Event::getUint64Attr), slotOf(&Event::getInt64Attr),
                     slotOf(&Event::getDoubleAttr), slotOf(&Event::getBoolAttr), slotOf(&Event::getStringAttr),
                     slotOf(&Event::keys), slotOf(&Context::getUint64Attr), slotOf(&Context::getInt64Attr),
                     slotOf(&Context::getDoubleAttr), slotOf(&Context::getBoolAttr), slotOf(&Context::getStringAttr),
                     slotOf(&Filter::operator()), slotOf(&Action::operator())}),
        ElementsAre(0, 3, 4, 5, 6, 7, 8, 2, 3, 4, 5, 6, 2, 2));
}

static_assert(std::is_same_v<std::underlying_type_t<EventType>, std::uint32_t>);
static_assert(Event::ValueType::Uint64 == Event::ValueType{0} && Event::ValueType::Int64 == Event::ValueType{1} &&
              Event::ValueType::Double == Event::ValueType{2} && Event::ValueType::Bool == Event::ValueType{3} &&
              Event::ValueType::String == Event::ValueType{4});
static_assert(!std::is_copy_constructible_v<FiniteStateMachine> && !std::is_move_constructible_v<FiniteStateMachine>);
static_assert(!std::is_polymorphic_v<FiniteStateMachine> && !std::is_polymorphic_v<State>);

}  // namespace
