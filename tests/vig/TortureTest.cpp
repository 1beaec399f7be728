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
using Clock = std::chrono::steady_clock;

// As many as the environment asks for, or what takes seconds.
unsigned lifecyclesWanted() {
    const char* const wanted = std::getenv("VIG_LIFECYCLES");
    return wanted != nullptr ? static_cast<unsigned>(std::stoul(wanted)) : 100;
}

// What the library of the device configuration may do besides notifying from two threads, whatever it has promised.
enum class Library { CallsWhatWasRemoved, HoldsALockWhileItNotifies, WaitsInARemoval, LetsGoOfAListenerWithinACall };

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
        std::thread notifiers[] = {std::thread([this] { notify(); }), std::thread([this] { notify(); })};
        std::thread clients[] = {std::thread([&] { useAsClient(clientSeeds[0]); }),
                                 std::thread([&] { useAsClient(clientSeeds[1]); })};
        for (std::thread& client : clients) {
            client.join();
        }
        enter(Phase::Destroying);
        timed([this] { manager.reset(); });
        EXPECT_TRUE(config.listeners().empty());
        EXPECT_LE(config.mostListeners(), 1U);
        enter(Phase::Destroyed);
        for (std::thread& notifier : notifiers) {
            notifier.join();
        }
    }

    Clock::duration longestCall() const { return longest; }

  private:
    enum class Phase { Used, Destroying, Destroyed };

    template <typename Call>
    Clock::duration timed(const Call& call) {
        const auto begin = Clock::now();
        call();
        const auto taken = Clock::now() - begin;
        const std::lock_guard lock(mutex);
        longest = std::max(longest, taken);
        return taken;
    }

    // The numbers are given in the order of the registrations.
    void registerAgain(const std::unique_lock<std::mutex>& lock) {
        if (lock.owns_lock()) {
            const unsigned earlier = registrations;
            timed([this] { target->registerCallback(callbackOf(++registrations)); });
            over = earlier;
        }
    }

    VIGManager::Callback callbackOf(unsigned number) {
        return [this, number](auto&& configs) {
            if (heldByTheLibrary != nullptr) {
                heldByTheLibrary->reset();
            }
            EXPECT_NE(phase, Phase::Destroyed) << "a delivery after the destruction";
            const unsigned servedBefore = latestServed.exchange(number);
            EXPECT_GE(number, servedBefore) << "a delivery for an earlier registration";
            EXPECT_GT(number, overBefore) << "a delivery that began when its registration was over";
            EXPECT_FALSE(delivering.exchange(true)) << "two deliveries at once";
            EXPECT_EQ(configs.size(), 1U);
            if (number % 7 == 0 && number < 40) {
                registerAgain(std::unique_lock(registering, std::try_to_lock));  // a callback waits for nobody
            } else if (number % 5 == 0 || (number % 2 == 0 && number == servedBefore)) {
                if (library == Library::WaitsInARemoval) {
                    letBothNotifiersIn();
                }
                timed([this] { target->deregisterCallback(); });
            } else if (number % 3 == 0 && clientsWaitForNoDelivery()) {
                blockUntilSomethingHappens();
            }
            delivering = false;
        };
    }

    // So that one is in the callback and one waits for it to end.
    void letBothNotifiersIn() {
        std::unique_lock lock(mutex);
        happened.wait_for(lock, std::chrono::milliseconds(2), [this] { return underWay.size() == 2; });
    }

    // Registrations that come at the same time would not be over, nor their listeners gone.
    void deregisterAlone() {
        const std::lock_guard lock(registering);
        const auto taken = timed([this] { target->deregisterCallback(); });
        EXPECT_TRUE(config.listeners().empty() || taken >= std::chrono::seconds(2));
        over = registrations;
    }

    bool clientsWaitForNoDelivery() const {
        return library == Library::CallsWhatWasRemoved || library == Library::LetsGoOfAListenerWithinACall;
    }

    // Something happens, or the clients have ended.
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

    // As a call of the service does; now and then another thread gets its turn.
    void waitForTheLibrary() {
        if (library == Library::HoldsALockWhileItNotifies) {
            const std::lock_guard lock(notifying);
        }
        if (++calls % 4 == 0) {
            std::this_thread::yield();
        }
    }

    // But for one that it is called from.
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
                timed([this] { target->deregisterCallback(); });
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
            for (fakes::Listener& listener : listeners) {
                overBefore = over;
                switch (library) {
                    case Library::CallsWhatWasRemoved:
                        config.notify(listener);
                        break;
                    case Library::HoldsALockWhileItNotifies:
                        notifyWithTheLock(listener);
                        std::this_thread::yield();  // or the clients hardly ever get it
                        break;
                    case Library::WaitsInARemoval:
                        notifyUnlessRemoved(listener);
                        break;
                    case Library::LetsGoOfAListenerWithinACall:
                        heldByTheLibrary = &listener;
                        config.notify(listener);
                        heldByTheLibrary = nullptr;
                        break;
                }
            }
            const std::lock_guard lock(mutex);
            ++rounds;
            happened.notify_all();
        }
    }

    void notifyWithTheLock(const fakes::Listener& listener) {
        const std::lock_guard lock(notifying);
        config.notify(listener);
    }

    void notifyUnlessRemoved(const fakes::Listener& listener) {
        {
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

    // What `over` was when the delivery on this thread, if there is one, had not begun.
    inline static thread_local unsigned overBefore = 0;
    // The last hold that the library has on the listener that it calls on this thread.
    inline static thread_local fakes::Listener* heldByTheLibrary = nullptr;

    const Library library;
    fakes::FakeDeviceConfig config;
    std::minstd_rand random;
    const int lateness = static_cast<int>(random() % 4);
    std::mutex mutex;
    std::condition_variable happened;
    unsigned events = 0;                                                    // guarded by mutex
    unsigned rounds = 0;                                                    // guarded by mutex; of notifications
    std::vector<fakes::Listener> everRegistered;                            // guarded by mutex
    std::map<std::thread::id, const OnPropertiesChangeListener*> underWay;  // guarded by mutex
    Clock::duration longest{};                                              // guarded by mutex
    std::recursive_mutex notifying;
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

class Torture : public testing::TestWithParam<Library> {};

TEST_P(Torture, RegisteringDeregisteringNotifyingAndDestroyingAtOnceKeepsEveryPromise) {
    const unsigned wanted = lifecyclesWanted();
    unsigned lifecycles = 0;
    Clock::duration longest{};
    while (lifecycles < wanted && !testing::Test::HasFailure()) {
        const support::LogCapture log;
        Lifecycle lifecycle(GetParam(), ++lifecycles);
        lifecycle.run();
        longest = std::max(longest, lifecycle.longestCall());
        if (lifecycles % 10'000 == 0 || lifecycles == wanted) {
            std::cout << lifecycles << " lifecycles, the longest call "
                      << std::chrono::duration_cast<std::chrono::milliseconds>(longest).count() << " ms" << std::endl;
        }
    }
}

std::string nameOf(const testing::TestParamInfo<Library>& kind) {
    switch (kind.param) {
        case Library::CallsWhatWasRemoved:
            return "CallsWhatWasRemoved";
        case Library::HoldsALockWhileItNotifies:
            return "HoldsALockWhileItNotifies";
        case Library::WaitsInARemoval:
            return "WaitsInARemoval";
        case Library::LetsGoOfAListenerWithinACall:
            return "LetsGoOfAListenerWithinACall";
    }
    return {};
}

INSTANTIATE_TEST_SUITE_P(WithALibraryThat, Torture,
                         testing::Values(Library::CallsWhatWasRemoved, Library::HoldsALockWhileItNotifies,
                                         Library::WaitsInARemoval, Library::LetsGoOfAListenerWithinACall),
                         nameOf);

}  // namespace
