#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include "tests/support/LogCapture.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::VIG::VIGManager;

// As many as the environment asks for, or what takes seconds.
unsigned lifecyclesWanted() {
    const char* const wanted = std::getenv("VIG_LIFECYCLES");
    return wanted != nullptr ? static_cast<unsigned>(std::stoul(wanted)) : 300;
}

// One manager that two client threads register with and deregister from while two threads of the device
// configuration notify it, from its construction until after its destruction. The device configuration comes late,
// is slow, and calls what was removed; some callbacks use the manager, and some block.
class Lifecycle {
  public:
    explicit Lifecycle(unsigned seed) : random(seed) {
        config.availability = [this](int check) {
            overBefore = over;  // on the watcher, which delivers only after this
            return check % 4 >= lateness;
        };
        config.beforeAdding = config.beforeRemoving = [this](const auto&) { dawdle(); };
        config.afterReading = [this] { dawdle(); };
        config.onAdded = [this](const auto& listener) {
            const std::lock_guard lock(mutex);
            everRegistered.push_back(listener);
            noteEvent();
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
        enter(Phase::Destroying);
        manager.reset();
        EXPECT_TRUE(config.listeners().empty());
        EXPECT_LE(config.mostListeners(), 1U);
        enter(Phase::Destroyed);
        for (std::thread& notifier : notifiers) {
            notifier.join();
        }
    }

  private:
    enum class Phase { Used, Destroying, Destroyed };

    void registerAgain() {
        // The numbers are given in the order of the registrations.
        const std::lock_guard lock(registering);
        const unsigned earlier = registrations;
        target->registerCallback([this, number = ++registrations](auto&& configs) {
            EXPECT_NE(phase, Phase::Destroyed) << "a delivery after the destruction";
            EXPECT_GE(number, latestServed.exchange(number)) << "a delivery for an earlier registration";
            EXPECT_GT(number, overBefore) << "a delivery that began when its registration was over";
            EXPECT_FALSE(delivering.exchange(true)) << "two deliveries at once";
            EXPECT_EQ(configs.size(), 1U);
            if (number % 7 == 0 && number < 40) {
                registerAgain();
            } else if (number % 5 == 0) {
                target->deregisterCallback();
            } else if (number % 3 == 0) {
                blockUntilSomethingHappens();
            }
            delivering = false;
        });
        over = earlier;
    }

    // Registrations that come at the same time would not be over.
    void deregisterAlone() {
        const std::lock_guard lock(registering);
        target->deregisterCallback();
        over = registrations;
    }

    // The clients' calls wait for no delivery, so something happens, or they have ended.
    void blockUntilSomethingHappens() {
        std::unique_lock lock(mutex);
        happened.wait(lock, [this, before = events] { return events != before || phase != Phase::Used; });
    }

    // REQUIRES: the mutex is held.
    void noteEvent() {
        ++events;
        happened.notify_all();
    }

    void enter(Phase next) {
        const std::lock_guard lock(mutex);
        phase = next;
        noteEvent();
    }

    // Now and then another thread gets its turn.
    void dawdle() {
        if (++calls % 4 == 0) {
            std::this_thread::yield();
        }
    }

    void useAsClient(std::uint_fast32_t seed) {
        std::minstd_rand draws(seed);
        for (int call = 0; call < 6; ++call) {
            if (const auto drawn = draws() % 6; drawn == 0) {
                target->deregisterCallback();
            } else if (drawn == 1) {
                deregisterAlone();
            } else {
                registerAgain();
            }
            const std::lock_guard lock(mutex);
            noteEvent();
        }
    }

    // The library may call a listener that was removed, even when its manager is gone.
    void notify() {
        for (unsigned seen = 0; phase != Phase::Destroyed;) {
            std::vector<fakes::Listener> listeners;
            {
                std::unique_lock lock(mutex);
                happened.wait(lock, [&] { return events != seen; });
                seen = events;
                listeners = everRegistered;
            }
            for (const fakes::Listener& listener : listeners) {
                overBefore = over;
                config.notify(listener);
            }
        }
    }

    // What `over` was when the delivery on this thread, if there is one, had not begun.
    inline static thread_local unsigned overBefore = 0;

    fakes::FakeDeviceConfig config;
    std::minstd_rand random;
    const int lateness = static_cast<int>(random() % 4);
    std::mutex mutex;
    std::condition_variable happened;
    unsigned events = 0;                          // guarded by mutex
    std::vector<fakes::Listener> everRegistered;  // guarded by mutex
    std::mutex registering;
    unsigned registrations = 0;  // guarded by registering
    std::atomic<Phase> phase{Phase::Used};
    std::atomic<unsigned> over{0};  // up to this one all registrations are
    std::atomic<unsigned> latestServed{0};
    std::atomic<unsigned> calls{0};
    std::atomic<bool> delivering{false};
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    VIGManager* const target = manager.get();
};

TEST(Torture, RegisteringDeregisteringNotifyingAndDestroyingAtOnceKeepsEveryPromise) {
    const unsigned wanted = lifecyclesWanted();
    unsigned lifecycles = 0;
    while (lifecycles < wanted && !testing::Test::HasFailure()) {
        const support::LogCapture log;
        Lifecycle(++lifecycles).run();
        if (lifecycles % 10'000 == 0 || lifecycles == wanted) {
            std::cout << lifecycles << " lifecycles" << std::endl;
        }
    }
}

}  // namespace
