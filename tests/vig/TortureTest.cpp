#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "tests/support/LogCapture.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::VIG::VIGManager;

constexpr std::chrono::seconds kDuration{10};

// One manager that two client threads register with and deregister from while two threads of the device
// configuration notify it, from its construction until after its destruction.
class Lifecycle {
  public:
    explicit Lifecycle(unsigned seed) : random(seed) {
        config.availability = [this](int check) { return check % 4 >= lateness; };
        config.beforeAdding = config.beforeRemoving = [](const auto&) { std::this_thread::yield(); };
        config.onAdded = [this](const auto& listener) {
            const std::lock_guard lock(mutex);
            everRegistered.push_back(listener);
        };
        config.setResponse(R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[]}}}]})");
    }

    void run() {
        const std::uint_fast32_t clientSeeds[] = {random(), random()};
        std::thread notifiers[] = {std::thread([this] { notify(); }), std::thread([this] { notify(); })};
        std::thread clients[] = {std::thread([&] { useAsClient(clientSeeds[0]); }),
                                 std::thread([&] { useAsClient(clientSeeds[1]); })};
        for (std::thread& client : clients) {
            client.join();
        }
        manager.reset();
        destroyed = true;
        EXPECT_TRUE(config.listeners().empty());
        EXPECT_LE(config.mostListeners(), 1U);
        std::this_thread::yield();
        ended = true;
        for (std::thread& notifier : notifiers) {
            notifier.join();
        }
    }

  private:
    void registerAgain() {
        // The numbers are given in the order of the registrations.
        const std::lock_guard lock(registering);
        target->registerCallback([this, number = ++registrations](auto&& configs) {
            EXPECT_FALSE(destroyed) << "a delivery after the destruction";
            EXPECT_GE(number, latestServed.exchange(number)) << "a delivery for an earlier registration";
            EXPECT_FALSE(delivering.exchange(true)) << "two deliveries at once";
            EXPECT_EQ(configs.size(), 1U);
            if (number % 7 == 0 && number < 40) {
                registerAgain();
            } else if (number % 5 == 0) {
                target->deregisterCallback();
            }
            delivering = false;
        });
    }

    void useAsClient(std::uint_fast32_t seed) {
        std::minstd_rand draws(seed);
        for (int call = 0; call < 6; ++call) {
            if (draws() % 3 == 0) {
                target->deregisterCallback();
            } else {
                registerAgain();
            }
            if (draws() % 2 == 0) {
                std::this_thread::yield();
            }
        }
    }

    // The library may call a listener that was removed, even when its manager is gone.
    void notify() {
        while (!ended) {
            std::vector<fakes::Listener> listeners;
            {
                const std::lock_guard lock(mutex);
                listeners = everRegistered;
            }
            for (const fakes::Listener& listener : listeners) {
                config.notify(listener);
            }
            std::this_thread::yield();
        }
    }

    fakes::FakeDeviceConfig config;
    std::minstd_rand random;
    const int lateness = static_cast<int>(random() % 4);
    std::mutex mutex;
    std::vector<fakes::Listener> everRegistered;  // guarded by mutex
    std::mutex registering;
    unsigned registrations = 0;  // guarded by registering
    std::atomic<unsigned> latestServed{0};
    std::atomic<bool> delivering{false};
    std::atomic<bool> destroyed{false};
    std::atomic<bool> ended{false};
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    VIGManager* const target = manager.get();
};

TEST(Torture, RegisteringDeregisteringNotifyingAndDestroyingAtOnceKeepsEveryPromise) {
    const support::LogCapture log;
    const auto end = std::chrono::steady_clock::now() + kDuration;
    unsigned lifecycles = 0;
    while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure()) {
        Lifecycle(++lifecycles).run();
    }
    std::cout << lifecycles << " lifecycles\n";
    EXPECT_GT(lifecycles, 100U);
}

}  // namespace
