#include "vig/DeliveryGate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>

namespace {

using Brenta::OS::VIG::DeliveryGate;

TEST(DeliveryGateTest, WhoWaitsIsLetThroughUnlessItsRegistrationIsOverOrTheGateIsClosed) {
    struct {
        const char* what;
        std::function<void(DeliveryGate&)> happens;
        bool isClosed;
        bool isLetThrough;
    } cases[] = {
        {"nothing", [](DeliveryGate&) {}, false, true},
        {"another registration", [](DeliveryGate& gate) { EXPECT_EQ(gate.beginRegistration(), 2U); }, false, false},
        {"the end", [](DeliveryGate& gate) { gate.close(); }, true, false},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        DeliveryGate gate;
        EXPECT_EQ(gate.latestRegistration(), 0U);
        EXPECT_EQ(gate.beginRegistration(), 1U);
        std::future<bool> waiter;
        std::future<bool> happening;
        std::atomic<bool> hasEnded = false;
        {
            const DeliveryGate::Passage passage(gate, 1);
            EXPECT_TRUE(passage);
            EXPECT_TRUE(gate.isInside());
            EXPECT_FALSE(DeliveryGate::Passage(gate, 0));
            EXPECT_TRUE(DeliveryGate::Passage(gate, 1)) << "within a delivery nobody waits";
            waiter = std::async(std::launch::async, [&gate] {
                EXPECT_FALSE(gate.isInside());
                return static_cast<bool>(DeliveryGate::Passage(gate, 1));
            });
            happening = std::async(std::launch::async, [&] {
                test.happens(gate);
                return hasEnded.load();
            });
            if (!test.isLetThrough) {
                EXPECT_FALSE(waiter.get()) << "a waiter leaves at once";
            }
            if (!test.isClosed) {
                happening.get();
            }
            hasEnded = true;
        }
        EXPECT_TRUE(!test.isClosed || happening.get()) << "a gate closes when the delivery under way has ended";
        if (test.isLetThrough) {
            EXPECT_TRUE(waiter.get());
        }
        EXPECT_FALSE(gate.isInside());
        EXPECT_EQ(static_cast<bool>(DeliveryGate::Passage(gate, gate.latestRegistration())), !test.isClosed);
    }
}

}  // namespace
