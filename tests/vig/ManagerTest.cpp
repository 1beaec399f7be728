#include "vig/VIGManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "tests/support/ImpossibleThreads.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"

namespace {

using Brenta::OS::VIG::VIGManager;
using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kAvailable = "ViG device config is available now.";
constexpr const char* kNotAvailable = "ViG device config is not available yet.";
constexpr const char* kUpdated = "ViG response is updated in QDC!";

// The document number N has N configurations, so that a receiver can tell which one it got.
std::string documentNumber(std::size_t number) {
    std::string configs;
    for (std::size_t id = 0; id < number; ++id) {
        configs += (id == 0 ? "" : ",") + std::string(R"({"id":)") + std::to_string(id) +
                   R"(,"payload":{"id":1,"data":{"transitions":[]}}})";
    }
    return R"({"configs":[)" + configs + "]}";
}

class ManagerTest : public testing::Test {
  protected:
    // Registers and returns once the manager listens for changes.
    void registerAndListen(VIGManager::Callback callback) {
        manager->registerCallback(std::move(callback));
        config.waitForAdded(1);
    }

    // Destroying the manager joins its watcher, so that everything it does has been done.
    void destroy() { manager.reset(); }

    fakes::FakeDeviceConfig config;
    support::LogCapture log;
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    support::Receiver receiver;
};

TEST_F(ManagerTest, ParsesWithTheNamesOfTheLibraryAndNoOthers) {
    const auto parse = [&](const char* event, const char* action) {
        return manager->parseResponse(std::string(R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[{)") +
                                      R"("from_state":"start","to_state":"end","event":")" + event +
                                      R"(","filters":[],"actions":[{"name":")" + action + R"("}]}]}}}]})");
    };
    for (const char* event :
         {"EnteringState", "Timeout", "Test", "TelemetryEventBegin", "ProcessMemoryHeartBeat", "SystemMemoryHeartBeat",
          "ZramHeartBeat", "ProcessCpuHeartBeat", "ForegroundAppsStats", "TelemetryEventEnd"}) {
        EXPECT_EQ(parse(event, "Test").size(), 1U) << event;
    }
    for (const char* action : {"Test", "LogZramHeartBeat", "TriggerVelora", "TriggerVeloraCpu"}) {
        EXPECT_EQ(parse("Test", action).size(), 1U) << action;
    }
    const auto configs = parse("ZramHeartBeat", "Test");
    EXPECT_THAT(configs.at(0)->getConfigPayload()->getFiniteStateMachine()->getAllListeningEventTypes(),
                ElementsAre(static_cast<Brenta::OS::RulesEngine::EventType>(1003)));
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_THAT(parse("zramheartbeat", "Test"), IsEmpty());
    EXPECT_THAT(parse("Test", "test"), IsEmpty());
}

TEST_F(ManagerTest, ReadsAnAbsentOrBrokenDocumentAsNoConfigurations) {
    EXPECT_EQ(manager->getConfig(), "\n    { \"configs\": [] }\n  ");
    EXPECT_THAT(manager->parseResponse(manager->getConfig()), IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_THAT(manager->parseResponse(""), IsEmpty());
    config.setResponse("text");
    EXPECT_EQ(manager->getConfig(), "text");
}

TEST_F(ManagerTest, DeliversOnceBeforeItListensWhenTheServiceIsThere) {
    config.setResponse(documentNumber(2));
    std::size_t deliveredBefore = 0;
    config.beforeAdding = [&](const auto&) { deliveredBefore = receiver.sizes().size(); };
    registerAndListen(receiver.callback());
    EXPECT_EQ(deliveredBefore, 1U);
    destroy();
    EXPECT_THAT(receiver.sizes(), ElementsAre(2));
    EXPECT_NE(receiver.threads().at(0), std::this_thread::get_id());
    EXPECT_THAT(log.messages(), ElementsAre(kAvailable));
    EXPECT_THAT(config.sleeps(), IsEmpty());
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, WaitsOneThenTwoSecondsForTheThirdCheck) {
    config.availability = [](int check) { return check == 3; };
    manager->registerCallback(receiver.callback());
    receiver.waitFor(1);
    destroy();
    EXPECT_THAT(config.sleeps(), ElementsAre(1, 2));
    EXPECT_THAT(log.messages(), ElementsAre(kNotAvailable, kNotAvailable, kAvailable));
}

TEST_F(ManagerTest, GivesUpAfterFiveChecksAndANewRegistrationBeginsAnew) {
    config.availability = [](int) { return false; };
    std::promise<void> last;
    config.duringSleep = [&](int count) {
        if (count == 5) {
            last.set_value();
        }
    };
    manager->registerCallback(receiver.callback());
    last.get_future().wait();
    support::Receiver second;
    config.availability = [](int) { return true; };
    manager->registerCallback(second.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(config.sleeps(), ElementsAre(1, 2, 4, 8, 16));
    EXPECT_EQ(config.checks(), 6);
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_THAT(log.messages(),
                ElementsAre(kNotAvailable, kNotAvailable, kNotAvailable, kNotAvailable, kNotAvailable, kAvailable));
}

TEST_F(ManagerTest, AWatcherThatGaveUpNeitherDeliversNorListens) {
    config.availability = [](int) { return false; };
    manager->registerCallback(receiver.callback());
    destroy();
    EXPECT_THAT(config.sleeps(), ElementsAre(1, 2, 4, 8, 16));
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_EQ(config.mostListeners(), 0U);
}

TEST_F(ManagerTest, ARegistrationWhileTheWatcherPollsGetsAFullBackOffOfItsOwn) {
    config.availability = [](int) { return false; };
    support::Receiver second;
    config.duringSleep = [&](int count) {
        if (count == 3) {
            manager->registerCallback(second.callback());
        } else if (count == 7) {
            config.availability = [](int) { return true; };
        }
    };
    manager->registerCallback(receiver.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(config.sleeps(), ElementsAre(1, 2, 4, 1, 2, 4, 8));
    EXPECT_THAT(receiver.sizes(), IsEmpty());
}

TEST_F(ManagerTest, ARegistrationWhileTheWatcherSleepsIsServedAtOnce) {
    config.onlyRequestsWake = true;
    config.availability = [](int check) { return check > 1; };
    manager->registerCallback(receiver.callback());
    config.asleep.get_future().wait();
    support::Receiver second;
    manager->registerCallback(second.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_THAT(log.messages(), ElementsAre(kNotAvailable, kAvailable));
}

TEST_F(ManagerTest, DeliversTheResponseOfEachNotification) {
    int reads = 0;
    config.afterReading = [&] { ++reads; };
    registerAndListen(receiver.callback());
    config.setResponse(documentNumber(3));
    config.notify();
    config.setResponse("broken");
    config.notify();
    config.setResponse(std::nullopt);
    config.notify();
    EXPECT_THAT(receiver.sizes(), ElementsAre(0, 3, 0, 0));
    EXPECT_EQ(receiver.threads().at(1), std::this_thread::get_id());
    const auto listener = config.listeners().at(0);
    manager->deregisterCallback();
    EXPECT_THAT(config.listeners(), IsEmpty());
    config.setResponse("broken, which the log would tell if it were read");
    config.notify(listener);
    EXPECT_THAT(receiver.sizes(), ElementsAre(0, 3, 0, 0));
    EXPECT_EQ(log.messages().back(), kUpdated);
    destroy();
    auto expected = log.messages();
    expected.push_back(kUpdated);
    config.notify(listener);
    EXPECT_EQ(log.messages(), expected) << "a notification after the destruction must reach nothing but the log";
    EXPECT_EQ(reads, 1) << "a notification carries the property, so the service is not asked again";
}

TEST_F(ManagerTest, APropertyThatChangesWhileItIsReadIsDeliveredAgainWithTheNextNotification) {
    config.setResponse(documentNumber(1));
    config.afterReading = [&] { config.setResponse(documentNumber(2)); };
    registerAndListen(receiver.callback());
    EXPECT_THAT(receiver.sizes(), ElementsAre(1));
    config.notify();
    EXPECT_THAT(receiver.sizes(), ElementsAre(1, 2));
}

TEST_F(ManagerTest, DeregistrationWhileTheDocumentIsReadKeepsItFromTheCallback) {
    std::promise<void> read;
    config.afterReading = [&] {
        manager->deregisterCallback();
        read.set_value();
    };
    manager->registerCallback(receiver.callback());
    read.get_future().wait();
    destroy();
    EXPECT_EQ(receiver.uses(), 0);
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, ARegistrationWhileTheDocumentIsReadGetsOnlyWhatIsReadForIt) {
    support::Receiver second;
    config.setResponse(documentNumber(1));
    config.afterReading = [&, reads = 0]() mutable {
        if (++reads == 1) {
            config.setResponse(documentNumber(2));
            manager->registerCallback(second.callback());
        }
    };
    manager->registerCallback(receiver.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_THAT(second.sizes(), ElementsAre(2));
}

TEST_F(ManagerTest, ALaterRegistrationGetsADeliveryAndAListenerOfItsOwn) {
    manager->registerCallback(receiver.callback());
    receiver.waitFor(1);
    support::Receiver second;
    config.setResponse(documentNumber(1));
    manager->registerCallback(second.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(receiver.sizes(), ElementsAre(0));
    EXPECT_THAT(second.sizes(), ElementsAre(1));
    EXPECT_LE(config.mostListeners(), 1U);
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, ANotificationOfAnEarlierRegistrationReachesNobody) {
    registerAndListen(receiver.callback());
    const auto earlier = config.listeners().at(0);
    support::Receiver second;
    manager->registerCallback(second.callback());
    config.waitForAdded(2);
    config.setResponse(documentNumber(5));
    config.notify(earlier);
    config.setResponse("broken, which the log would tell if it were read");
    config.notify(earlier);
    EXPECT_THAT(receiver.sizes(), ElementsAre(0));
    EXPECT_THAT(second.sizes(), ElementsAre(0));
    EXPECT_EQ(config.mostListeners(), 1U);
    destroy();
    EXPECT_THAT(log.messages(), Each(AnyOf(kAvailable, kUpdated)));
}

TEST_F(ManagerTest, ARegistrationWithoutATargetStillListens) {
    config.setResponse("broken, which the log would tell if it were read");
    registerAndListen(nullptr);
    config.notify();
    destroy();
    EXPECT_THAT(log.messages(), UnorderedElementsAre(kAvailable, kUpdated));
}

TEST_F(ManagerTest, DeregistrationDuringTheFirstDeliveryLeavesNoListener) {
    std::promise<void> delivering;
    std::promise<void> deregistered;
    manager->registerCallback([&](auto&&) {
        delivering.set_value();
        deregistered.get_future().wait();
    });
    delivering.get_future().wait();
    manager->deregisterCallback();
    deregistered.set_value();
    destroy();
    EXPECT_EQ(config.mostListeners(), 0U);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(ManagerTest, DeregistrationDuringTheRegistrationOfTheListenerLeavesNone) {
    std::promise<void> added;
    std::promise<void> mayReturn;
    config.onAdded = [&](const auto&) {
        added.set_value();
        mayReturn.get_future().wait();
    };
    manager->registerCallback(receiver.callback());
    added.get_future().wait();
    auto deregistered = std::async(std::launch::async, [&] {
        manager->deregisterCallback();
        return config.listeners();
    });
    while (receiver.uses() != 0) {
        std::this_thread::yield();
    }
    mayReturn.set_value();
    EXPECT_THAT(deregistered.get(), IsEmpty());
    destroy();
    EXPECT_THAT(config.listeners(), IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(ManagerTest, DeregistrationDoesNotWaitForAServiceThatDoesNotAnswer) {
    std::promise<void> adding;
    std::promise<void> mayAdd;
    config.beforeAdding = [&](const auto&) {
        adding.set_value();
        mayAdd.get_future().wait();
    };
    manager->registerCallback(receiver.callback());
    adding.get_future().wait();
    const auto begin = std::chrono::steady_clock::now();
    manager->deregisterCallback();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    mayAdd.set_value();
    destroy();
    EXPECT_EQ(config.mostListeners(), 1U);
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, WhatACallbackLeavesToTheEndOfItsThreadMayUseTheManager) {
    struct AtTheEnd {
        std::function<void()> act = [] {};
        ~AtTheEnd() { act(); }
    };
    std::promise<void> ending;
    std::promise<void> mayEnd;
    manager->registerCallback([&](auto&&) {
        thread_local AtTheEnd atTheEnd;
        atTheEnd.act = [&] {
            ending.set_value();
            mayEnd.get_future().wait();
            manager->deregisterCallback();
        };
    });
    ending.get_future().wait();
    auto registration = std::async(std::launch::async, [&] { manager->registerCallback(receiver.callback()); });
    receiver.waitFor(1);  // the new watcher does not wait for the end of the old one
    mayEnd.set_value();
    registration.get();
}

TEST_F(ManagerTest, ACallbackMayRegisterAndDeregister) {
    support::Receiver second;
    manager->registerCallback([&](auto&&) {
        manager->deregisterCallback();
        manager->registerCallback(second.callback());
    });
    second.waitFor(1);
    std::promise<void> delivered;
    manager->registerCallback([&](auto&&) {
        manager->deregisterCallback();
        delivered.set_value();
    });
    delivered.get_future().wait();
    destroy();
    EXPECT_THAT(second.sizes(), ElementsAre(0));
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, AServiceThatNotifiesWithinItsOwnCallsDoesNoHarm) {
    support::Receiver second;
    int deliveries = 0;
    config.onAdded = [&](const auto& listener) { config.notify(listener); };
    config.beforeRemoving = [&](const auto& listener) { config.notify(listener); };
    manager->registerCallback([&](auto&&) {
        if (++deliveries == 2) {
            manager->registerCallback(second.callback());
        }
    });
    second.waitFor(2);
    destroy();
    EXPECT_EQ(deliveries, 2);
    EXPECT_LE(config.mostListeners(), 1U);
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, ANotificationWithinADeliveryDoesNotWaitForItsEnd) {
    int deliveries = 0;
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            manager->deregisterCallback();
        }
    });
    EXPECT_TRUE(log.sees(kAvailable));
    config.beforeRemoving = [&](const auto& listener) { config.notify(listener); };
    config.notify();
    EXPECT_THAT(config.listeners(), IsEmpty());
    EXPECT_THAT(log.messages(), ElementsAre(kAvailable, kUpdated, kUpdated));
}

TEST_F(ManagerTest, DeregistrationWithinTheRegistrationOfTheListenerDoesNotWaitForIt) {
    std::promise<std::chrono::steady_clock::duration> taken;
    config.onAdded = [&](const auto&) {
        const auto begin = std::chrono::steady_clock::now();
        manager->deregisterCallback();
        taken.set_value(std::chrono::steady_clock::now() - begin);
    };
    manager->registerCallback(receiver.callback());
    EXPECT_LT(taken.get_future().get(), std::chrono::seconds(2));
    destroy();
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, AServiceWhoseRemovalWaitsForTheNotificationUnderWayDoesNotHangTheManager) {
    std::promise<void> notified;
    std::promise<void> removing;
    std::promise<void> done;
    int deliveries = 0;
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            notified.set_value();
            removing.get_future().wait();
            manager->registerCallback(receiver.callback());
        }
    });
    config.beforeRemoving = [&, removals = 0](const auto&) mutable {
        if (++removals == 1) {
            removing.set_value();
            done.get_future().wait();
        }
    };
    auto notification = std::async(std::launch::async, [&] {
        config.notify();
        done.set_value();
    });
    notified.get_future().wait();
    manager->deregisterCallback();
    notification.get();
    receiver.waitFor(1);
    destroy();
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, ADeregistrationInADeliveryDoesNotWaitForTheRemovalThatWaitsForIt) {
    int deliveries = 0;
    std::promise<void> removing;
    std::promise<void> notified;
    std::chrono::steady_clock::duration taken{};
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            notified.set_value();
            removing.get_future().wait();
            const auto begin = std::chrono::steady_clock::now();
            manager->deregisterCallback();
            taken = std::chrono::steady_clock::now() - begin;
        }
    });
    auto notification = std::async(std::launch::async, [&] { config.notify(); });
    notified.get_future().wait();
    config.beforeRemoving = [&](const auto&) {
        removing.set_value();
        notification.wait();
    };
    manager->deregisterCallback();
    EXPECT_LT(taken, std::chrono::seconds(2));
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, ARemovalWithinADeliveryMayWaitForTheNotificationOfAnotherThread) {
    int deliveries = 0;
    std::future<void> other;
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            other = std::async(std::launch::async, [&] { config.notify(); });
            EXPECT_TRUE(log.sees(kUpdated, 2)) << "the other notification is on its way to the gate, or waits there";
            manager->deregisterCallback();
        }
        EXPECT_LT(deliveries, 3);
    });
    config.onRemoved = [&](const auto&) { other.wait(); };
    config.notify();
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, AListenerOfWhichTheLibraryLetsGoWithinACallLivesUntilItsEnd) {
    int deliveries = 0;
    fakes::Listener held;
    std::weak_ptr<com::korvel::deviceconfig::OnPropertiesChangeListener> listener;
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            manager->deregisterCallback();
            held.reset();
            EXPECT_FALSE(listener.expired());
        }
    });
    EXPECT_TRUE(log.sees(kAvailable));  // from then on the watcher lets the listener alone
    held = config.listeners().at(0);
    listener = held;
    config.notify(held);
    EXPECT_TRUE(listener.expired());
}

TEST_F(ManagerTest, AListenerIsAddedOnlyWhenTheEarlierOneIsRemoved) {
    std::promise<void> removing;
    std::promise<void> added;
    support::Receiver second;
    registerAndListen(receiver.callback());
    EXPECT_TRUE(log.sees(kAvailable));  // from then on the watcher no longer uses the service
    config.beforeAdding = [&](const auto&) { added.set_value(); };
    config.beforeRemoving = [&, removals = 0](const auto&) mutable {
        if (++removals == 1) {
            removing.set_value();
            second.waitFor(1);
            EXPECT_EQ(added.get_future().wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
        }
    };
    auto deregistration = std::async(std::launch::async, [&] { manager->deregisterCallback(); });
    removing.get_future().wait();
    manager->registerCallback(second.callback());
    config.waitForAdded(2);
    EXPECT_EQ(config.mostListeners(), 1U);
}

TEST_F(ManagerTest, NotificationsOnSeveralThreadsAreDeliveredOneAtATime) {
    std::atomic<int> inside{0};
    std::atomic<int> mostInside{0};
    std::atomic<int> deliveries{0};
    registerAndListen([&](auto&&) {
        mostInside = std::max(mostInside.load(), ++inside);
        ++deliveries;
        std::this_thread::yield();
        --inside;
    });
    std::vector<std::future<void>> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 50; ++round) {
                config.notify();
            }
        }));
    }
    threads.clear();
    EXPECT_EQ(deliveries, 201);
    EXPECT_EQ(mostInside, 1);
}

TEST_F(ManagerTest, TheDestructorLetsTheWatcherFinishButNotACallbackThatRegistersForEver) {
    int deliveries = 0;
    std::function<void()> registerAgain;
    const auto callback = [&](auto&&) {
        ++deliveries;
        registerAgain();
    };
    registerAgain = [&, target = manager.get()] { target->registerCallback(callback); };
    manager->registerCallback(callback);
    destroy();
    EXPECT_GE(deliveries, 1);
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST_F(ManagerTest, DeregistrationWithoutARegistrationChangesNothing) {
    manager->deregisterCallback();
    manager->deregisterCallback();
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_EQ(config.checks(), 0);
    manager->configureDeviceConfigService();
    config.waitForAdded(1);
}

TEST_F(ManagerTest, TheWatcherStartedByHandListensWithoutARegistration) {
    manager->configureDeviceConfigService();
    config.waitForAdded(1);
    manager->configureDeviceConfigService();
    destroy();
    EXPECT_EQ(config.mostListeners(), 1U);
    EXPECT_EQ(config.checks(), 1);
}

// Ends the registration on another thread before the watcher is asked for it.
class OvertakenManager : public VIGManager {
  public:
    ~OvertakenManager() override { stop(); }
    void configureDeviceConfigService() override {
        std::thread([this] { deregisterCallback(); }).join();
        VIGManager::configureDeviceConfigService();
    }
};

TEST_F(ManagerTest, ARegistrationThatEndsBeforeItIsWatchedLeavesNoListener) {
    {
        OvertakenManager overtaken;
        overtaken.registerCallback(receiver.callback());
        overtaken.VIGManager::configureDeviceConfigService();
    }
    EXPECT_EQ(config.checks(), 0);
    EXPECT_EQ(receiver.uses(), 0);
}

class OverridingManager : public VIGManager {
  public:
    ~OverridingManager() override { stop(); }
    std::string getConfig() const override { return documentNumber(4); }
    std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> parseResponse(const std::string& response) const override {
        const auto happens = duringParse;
        happens();
        return VIGManager::parseResponse(response);
    }
    void configureDeviceConfigService() override {
        ++configured;
        VIGManager::configureDeviceConfigService();
    }
    int configured = 0;
    std::function<void()> duringParse = [] {};
};

TEST_F(ManagerTest, UsesTheOverridesOfADerivedClass) {
    OverridingManager overriding;
    overriding.registerCallback(receiver.callback());
    receiver.waitFor(1);
    EXPECT_THAT(receiver.sizes(), ElementsAre(4));
    EXPECT_EQ(overriding.configured, 1);
}

TEST_F(ManagerTest, ARegistrationWhileTheDocumentIsParsedGetsOnlyWhatIsReadForIt) {
    support::Receiver second;
    {
        OverridingManager overriding;
        overriding.duringParse = [&] {
            overriding.duringParse = [] {};
            overriding.registerCallback(second.callback());
        };
        overriding.registerCallback(receiver.callback());
        second.waitFor(1);
    }
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_THAT(second.sizes(), ElementsAre(4));
}

TEST_F(ManagerTest, AThreadThatCannotBeCreatedLeavesNothingHalfDone) {
    {
        const support::ImpossibleThreads impossible;
        EXPECT_THROW(manager->registerCallback(receiver.callback()), std::system_error);
    }
    EXPECT_EQ(receiver.uses(), 0) << "the manager must not keep the callback";
    manager->registerCallback(receiver.callback());
    receiver.waitFor(1);
}

// Whose thread is refused while somebody else does something.
class RefusedManager : public VIGManager {
  public:
    ~RefusedManager() override { stop(); }
    void configureDeviceConfigService() override {
        if (const auto act = std::exchange(meanwhile, nullptr)) {
            act();
            throw std::system_error(EAGAIN, std::generic_category());
        }
        VIGManager::configureDeviceConfigService();
    }
    std::function<void()> meanwhile;
};

TEST_F(ManagerTest, AThreadThatCannotBeCreatedLeavesTheRegistrationThatHasTakenItsPlace) {
    RefusedManager refused;
    support::Receiver second;
    refused.meanwhile = [&] { refused.registerCallback(second.callback()); };
    EXPECT_THROW(refused.registerCallback(receiver.callback()), std::system_error);
    EXPECT_EQ(receiver.uses(), 0);
    config.waitForAdded(1);
    config.notify();
    EXPECT_THAT(second.sizes(), ElementsAre(0, 0));
}

}  // namespace
