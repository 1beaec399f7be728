#include "vig/DeliveryGate.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <thread>

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
        std::future<void> happening;
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
            happening = std::async(std::launch::async, [&] { test.happens(gate); });
            if (!test.isLetThrough) {
                EXPECT_FALSE(waiter.get()) << "a waiter leaves at once";
            }
            if (!test.isClosed) {
                happening.get();
            }
        }
        if (test.isLetThrough) {
            EXPECT_TRUE(waiter.get());
        }
        EXPECT_FALSE(gate.isInside());
        EXPECT_EQ(static_cast<bool>(DeliveryGate::Passage(gate, gate.latestRegistration())), !test.isClosed);
    }
}

// The delivery under way looks whether the gate is closed by beginning another one within itself.
TEST(DeliveryGateTest, ClosesWhenTheDeliveryUnderWayHasEnded) {
    for (int round = 0; round < 100; ++round) {
        DeliveryGate gate;
        gate.beginRegistration();
        std::promise<void> entered;
        bool delivered = false;
        const auto delivery = std::async(std::launch::async, [&] {
            const DeliveryGate::Passage passage(gate, 1);
            entered.set_value();
            while (DeliveryGate::Passage(gate, 1)) {
                std::this_thread::yield();
            }
            delivered = true;
        });
        entered.get_future().wait();
        gate.close();
        EXPECT_TRUE(delivered);
    }
}

}  // namespace
