#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <thread>

#include "tests/support/LogCapture.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::VIG::VIGManager;
using com::korvel::deviceconfig::OnPropertiesChangeListener;

// The library of the device configuration may do this besides notifying from two threads, whatever it has promised.
enum class Library { CallsWhatWasRemoved, HoldsALockWhileItNotifies, WaitsInARemoval };

// One manager that two client threads register with and deregister from while two threads of the device
// configuration notify it, from its construction until after its destruction. The device configuration comes late
// and is slow; some callbacks use the manager, and some block.
class Lifecycle {
  public:
    Lifecycle(Library kind, unsigned seed) : library(kind), random(seed) {
        config.availability = [this](int check) {
            waitForTheLibrary();
            overBefore = over;  // on the watcher, which delivers only after this
            return check % 4 >= lateness;
        };
        config.beforeAdding = config.beforeRemoving = [this](const auto&) { waitForTheLibrary(); };
        config.afterReading = [this] { waitForTheLibrary(); };
        config.onAdded = [this](const auto& listener) {
            const std::lock_guard lock(mutex);
            if (library == Library::CallsWhatWasRemoved) {
                everRegistered.push_back(listener);
            }
            noteEvent();
        };
        config.onRemoved = [this](const auto& listener) {
            if (library == Library::WaitsInARemoval) {
                waitForNotificationsOf(listener.get());
            }
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
        enter(Phase::Destroying);
        manager.reset();
        EXPECT_TRUE(config.listeners().empty());
        EXPECT_LE(config.mostListeners(), 1U);
        enter(Phase::Destroyed);
    }

  private:
    enum class Phase { Used, Destroying, Destroyed };

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
            EXPECT_NE(phase, Phase::Destroyed) << "a delivery after the destruction";
            const unsigned calledBefore = latestCalled.exchange(number);
            EXPECT_GE(number, calledBefore) << "a delivery for an earlier registration";
            EXPECT_GT(number, overBefore) << "a delivery that began when its registration was over";
            EXPECT_FALSE(delivering.exchange(true)) << "two deliveries at once";
            EXPECT_EQ(configs.size(), 1U);
            if (number % 7 == 0 && number < 40) {
                registerAgain(std::unique_lock(registering, std::try_to_lock));  // a callback waits for nobody
            } else if (number % 5 == 0 || (number % 2 == 0 && number == calledBefore)) {
                target->deregisterCallback();
            } else if (number % 3 == 0 && clientsWaitForNoDelivery()) {
                blockUntilSomethingHappens();
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

    bool clientsWaitForNoDelivery() const { return library == Library::CallsWhatWasRemoved; }

    // Waits until something happens, or the clients have ended.
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

    // Waits as a call of the service does; now and then another thread gets its turn.
    void waitForTheLibrary() {
        if (library == Library::HoldsALockWhileItNotifies) {
            const std::lock_guard lock(notifying);
        }
        if (++calls % 4 == 0) {
            std::this_thread::yield();
        }
    }

    // Does not wait for one that it is called from.
    void waitForNotificationsOf(const OnPropertiesChangeListener* listener) {
        std::unique_lock lock(mutex);
        happened.wait(lock, [&] {
            return std::ranges::none_of(underWay, [&](const auto& notification) {
                return notification.second == listener && notification.first != std::this_thread::get_id();
            });
        });
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
            std::unique_lock lock(mutex);
            noteEvent();
            if (!clientsWaitForNoDelivery()) {  // then the notifications do not wait for clients, but these for them
                happened.wait(lock, [this, before = rounds] { return rounds >= before + 4; });
            }
        }
    }

    void notify() {
        for (unsigned seen = 0; phase != Phase::Destroyed;) {
            std::vector<fakes::Listener> listeners;
            {
                std::unique_lock lock(mutex);
                happened.wait(lock, [&] { return events != seen || !clientsWaitForNoDelivery(); });
                seen = events;
                listeners = library == Library::CallsWhatWasRemoved ? everRegistered : config.listeners();
            }
            for (const fakes::Listener& listener : listeners) {
                overBefore = over;
                notify(listener);
                std::this_thread::yield();  // or the clients hardly ever get the lock of a library that holds one
            }
            const std::lock_guard lock(mutex);
            ++rounds;
            happened.notify_all();
        }
    }

    void notify(const fakes::Listener& listener) {
        std::unique_lock held(notifying, std::defer_lock);
        if (library == Library::HoldsALockWhileItNotifies) {
            held.lock();
        } else if (library == Library::WaitsInARemoval) {
            const std::lock_guard lock(mutex);
            if (config.listeners() != std::vector{listener}) {
                return;
            }
            underWay[std::this_thread::get_id()] = listener.get();
            happened.notify_all();
        }
        config.notify(listener);
        const std::lock_guard lock(mutex);
        underWay.erase(std::this_thread::get_id());
        happened.notify_all();
    }

    // It is what `over` was when the delivery on this thread, if there is one, had not begun.
    inline static thread_local unsigned overBefore = 0;

    const Library library;
    fakes::FakeDeviceConfig config;
    std::minstd_rand random;
    const int lateness = static_cast<int>(random() % 4);
    std::mutex mutex;
    std::condition_variable happened;
    unsigned events = 0;                          // guarded by mutex
    unsigned rounds = 0;                          // guarded by mutex; the notifiers have gone that many
    std::vector<fakes::Listener> everRegistered;  // guarded by mutex
    std::map<std::thread::id, const OnPropertiesChangeListener*> underWay;  // guarded by mutex
    std::recursive_mutex notifying;
    std::mutex registering;
    unsigned registrations = 0;  // guarded by registering
    std::atomic<Phase> phase{Phase::Used};
    std::atomic<unsigned> over{0};  // up to this one all registrations are
    std::atomic<unsigned> latestCalled{0};
    std::atomic<unsigned> calls{0};
    std::atomic<bool> delivering{false};
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    VIGManager* const target = manager.get();
};

class Torture : public testing::TestWithParam<std::pair<const char*, Library>> {};

TEST_P(Torture, RegisteringDeregisteringNotifyingAndDestroyingAtOnceKeepsEveryPromise) {
    // The environment may ask for more, or fewer, than what takes seconds.
    const char* const wanted = std::getenv("VIG_LIFECYCLES");
    const unsigned lifecycles = wanted != nullptr ? static_cast<unsigned>(std::stoul(wanted)) : 100;
    for (unsigned seed = 1; seed <= lifecycles && !HasFailure(); ++seed) {
        const support::LogCapture log;
        Lifecycle(GetParam().second, seed).run();
        if (seed % 10'000 == 0) {
            std::cout << seed << " lifecycles" << std::endl;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WithALibraryThat, Torture,
                         testing::Values(std::pair("CallsWhatWasRemoved", Library::CallsWhatWasRemoved),
                                         std::pair("HoldsALockWhileItNotifies", Library::HoldsALockWhileItNotifies),
                                         std::pair("WaitsInARemoval", Library::WaitsInARemoval)),
                         [](const auto& kind) { return std::string(kind.param.first); });

}  // namespace
