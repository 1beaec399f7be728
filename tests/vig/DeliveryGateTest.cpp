#include "vig/DeliveryGate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>

namespace {

using Brenta::OS::VIG::DeliveryGate;

TEST(DeliveryGateTest, WhoWaitsIsLetThroughUnlessItsRegistrationIsOverOrTheGateIsClosed) {
    for (const std::string meanwhile : {"nothing", "another registration", "the end"}) {
        SCOPED_TRACE(meanwhile);
        DeliveryGate gate;
        EXPECT_EQ(gate.latestRegistration(), 0U);
        EXPECT_EQ(gate.beginRegistration(), 1U);
        std::future<bool> waiter, closing;
        std::atomic<bool> hasEnded = false;
        {
            const DeliveryGate::Passage passage(gate, 1);
            EXPECT_TRUE(passage && gate.isInside());
            EXPECT_FALSE(DeliveryGate::Passage(gate, 0));
            EXPECT_TRUE(DeliveryGate::Passage(gate, 1)) << "within a delivery nobody waits";
            waiter =
                std::async(std::launch::async, [&gate] { return !gate.isInside() && DeliveryGate::Passage(gate, 1); });
            EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
            if (meanwhile == "another registration") {
                EXPECT_EQ(gate.beginRegistration(), 2U);
            } else if (meanwhile == "the end") {
                closing = std::async(std::launch::async, [&] { return gate.close(), hasEnded.load(); });
            }
            EXPECT_TRUE(meanwhile == "nothing" || !waiter.get()) << "a waiter leaves at once";
            hasEnded = true;
        }
        EXPECT_TRUE(meanwhile != "nothing" || waiter.get());
        EXPECT_TRUE(!closing.valid() || closing.get()) << "a gate closes when the delivery under way has ended";
        EXPECT_FALSE(gate.isInside());
        EXPECT_EQ(static_cast<bool>(DeliveryGate::Passage(gate, gate.latestRegistration())), meanwhile != "the end");
    }
}

}  // namespace
