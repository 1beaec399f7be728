#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/LogCapture.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::VIG::VIGManager;

// One manager that two client threads register with and deregister from while two threads of the device
// configuration notify it, from its construction until after its destruction. The device configuration comes late,
// calls what was removed, and may hold a lock while it notifies; some callbacks use the manager.
class Lifecycle {
  public:
    Lifecycle(bool locks, unsigned seed) : holdsALock(locks), random(seed) {
        config.availability = [this](int check) {
            waitForTheLibrary();
            overBefore = over;  // on the watcher, which delivers only after this
            return check % 4 >= lateness;
        };
        config.beforeAdding = config.beforeRemoving = [this](const auto&) { waitForTheLibrary(); };
        config.afterReading = [this] { waitForTheLibrary(); };
        config.onAdded = [this](const auto& listener) {
            const std::lock_guard lock(mutex);
            everRegistered.push_back(listener);
        };
        config.setResponse(R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[]}}}]})");
    }

    void run() {
        const std::uint_fast32_t clientSeeds[] = {random(), random()};
        const std::jthread notifiers[] = {std::jthread([this] { notify(); }), std::jthread([this] { notify(); })};
        {
            const std::jthread clients[] = {std::jthread([&] { useAsClient(clientSeeds[0]); }),
                                            std::jthread([&] { useAsClient(clientSeeds[1]); })};
        }
        manager.reset();
        EXPECT_TRUE(config.listeners().empty());
        EXPECT_LE(config.mostListeners(), 1U);
        isDestroyed = true;
    }

  private:
    // The numbers are given in the order of the registrations.
    void registerAgain(const std::unique_lock<std::mutex>& lock) {
        if (lock.owns_lock()) {
            const unsigned earlier = registrations;
            target->registerCallback(callbackOf(++registrations));
            over = earlier;
        }
    }

    VIGManager::Callback callbackOf(unsigned number) {
        return [this, number](auto&& configs) {
            EXPECT_FALSE(isDestroyed) << "a delivery after the destruction";
            const unsigned calledBefore = latestCalled.exchange(number);
            EXPECT_GE(number, calledBefore) << "a delivery for an earlier registration";
            EXPECT_GT(number, overBefore) << "a delivery that began when its registration was over";
            EXPECT_FALSE(delivering.exchange(true)) << "two deliveries at once";
            EXPECT_EQ(configs.size(), 1U);
            if (number % 7 == 0 && number < 40) {
                registerAgain(std::unique_lock(registering, std::try_to_lock));  // a callback waits for nobody
            } else if (number % 5 == 0 || (number % 2 == 0 && number == calledBefore)) {
                target->deregisterCallback();
            }
            delivering = false;
        };
    }

    // Registrations that come at the same time would not be over, nor their listeners gone.
    void deregisterAlone() {
        const std::lock_guard lock(registering);
        const auto begin = std::chrono::steady_clock::now();
        target->deregisterCallback();
        EXPECT_TRUE(config.listeners().empty() || std::chrono::steady_clock::now() - begin >= std::chrono::seconds(2));
        over = registrations;
    }

    // Waits as a call of the service does; now and then another thread gets its turn.
    void waitForTheLibrary() {
        const auto lock = holdsALock ? std::unique_lock(notifying) : std::unique_lock<std::recursive_mutex>();
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
                registerAgain(std::unique_lock(registering));
            }
            for (const unsigned before = rounds; rounds < before + 4;) {
                std::this_thread::yield();
            }
        }
    }

    void notify() {
        for (; !isDestroyed; ++rounds) {
            std::unique_lock lock(mutex);
            const std::vector<fakes::Listener> listeners = everRegistered;
            lock.unlock();
            for (const fakes::Listener& listener : listeners) {
                overBefore = over;
                const auto held = holdsALock ? std::unique_lock(notifying) : std::unique_lock<std::recursive_mutex>();
                config.notify(listener);
            }
            std::this_thread::yield();  // or the clients hardly ever get the lock of a library that holds one
        }
    }

    // It is what `over` was when the delivery on this thread, if there is one, had not begun.
    inline static thread_local unsigned overBefore = 0;

    const bool holdsALock;
    fakes::FakeDeviceConfig config;
    std::minstd_rand random;
    const int lateness = static_cast<int>(random() % 4);
    std::mutex mutex;
    std::vector<fakes::Listener> everRegistered;  // guarded by mutex
    std::recursive_mutex notifying;
    std::mutex registering;
    unsigned registrations = 0;       // guarded by registering
    std::atomic<unsigned> rounds{0};  // the notifiers have gone that many
    std::atomic<unsigned> over{0};    // up to this one all registrations are
    std::atomic<unsigned> latestCalled{0};
    std::atomic<unsigned> calls{0};
    std::atomic<bool> delivering{false}, isDestroyed{false};
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    VIGManager* const target = manager.get();
};

TEST(Torture, RegisteringDeregisteringNotifyingAndDestroyingAtOnceKeepsEveryPromise) {
    // The environment may ask for more, or fewer, than what takes seconds.
    const char* const wanted = std::getenv("VIG_LIFECYCLES");
    const unsigned lifecycles = wanted != nullptr ? static_cast<unsigned>(std::stoul(wanted)) : 200;
    for (unsigned seed = 1; seed <= lifecycles && !HasFailure(); ++seed) {
        const support::LogCapture log;
        Lifecycle(seed % 2 == 0, seed).run();
        if (seed % 10'000 == 0) {
            std::cout << seed << " lifecycles" << std::endl;
        }
    }
}

}  // namespace
