#include "vig/VIGManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <functional>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

#include "tests/support/Documents.h"
#include "tests/support/ImpossibleThreads.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Receiver.h"
#include "tests/vig/fakes/FakeDeviceConfig.h"
#include "vig/EventTypeNames.h"
#include "vig/ResponseListener.h"

namespace {

using Brenta::OS::VIG::ResponseListener;
using Brenta::OS::VIG::VIGManager;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAvailable = "ViG device config is available now.";
constexpr const char* kNotAvailable = "ViG device config is not available yet.";
constexpr const char* kUpdated = "ViG response is updated in QDC!";
constexpr const char* kBroken = "broken, which the log would tell if it were read";
constexpr std::chrono::seconds kSettleTimeout{2};
constexpr std::chrono::milliseconds kMoment{20};

// The document number N has N configurations, so that a receiver can tell which one it got.
std::string documentNumber(std::size_t number) {
    return support::document(std::vector<std::string>(number, support::config(1, {})));
}

std::chrono::steady_clock::duration timed(const std::function<void()>& call) {
    const auto begin = std::chrono::steady_clock::now();
    call();
    return std::chrono::steady_clock::now() - begin;
}

class ManagerTest : public testing::Test {
  protected:
    // Registers and returns once the manager listens for changes and its watcher lets the service alone.
    void registerAndListen(VIGManager::Callback callback) {
        manager->registerCallback(std::move(callback));
        EXPECT_TRUE(log.sees(kAvailable));
    }

    // Destroying the manager joins its watcher, so that everything it does has been done.
    void destroy() { manager.reset(); }

    fakes::FakeDeviceConfig config;
    support::LogCapture log;
    std::unique_ptr<VIGManager> manager = std::make_unique<VIGManager>();
    support::Receiver receiver, second;
};

TEST_F(ManagerTest, ParsesWithTheNamesOfTheLibraryAndNoOthers) {
    const auto parse = [&](std::string_view event, const std::string& action) {
        return manager->parseResponse(support::documentOf(
            {support::transition("start", "end", std::string(event), "[]", R"([{"name":")" + action + R"("}])")}));
    };
    for (const auto& [type, name] : Brenta::OS::VIG::kEventTypeNames.pairs) {
        const auto configs = parse(name, "Test");
        ASSERT_EQ(configs.size(), 1U) << name;
        EXPECT_THAT(configs[0]->getConfigPayload()->getFiniteStateMachine()->getAllListeningEventTypes(),
                    ElementsAre(type));
    }
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

TEST(ManagerBackOff, EndsWithADeliveryAndThenAListenerOrAfterFiveChecksAndBeginsAnewForEachRegistration) {
    constexpr int kNever = 100;
    const struct {
        int firstAvailable;    // the check that finds the service
        int registersAtSleep;  // the sleep with another registration, 0 for none
        std::vector<int> sleeps;
    } cases[] = {
        {1, 0, {}},
        {3, 0, {1, 2}},
        {kNever, 0, {1, 2, 4, 8, 16}},
        {8, 3, {1, 2, 4, 1, 2, 4, 8}},
        {6, 5, {1, 2, 4, 8, 16}},
    };
    for (const auto& [firstAvailable, registersAtSleep, sleeps] : cases) {
        SCOPED_TRACE(firstAvailable);
        fakes::FakeDeviceConfig config;
        const support::LogCapture log;
        support::Receiver first, second;
        {
            VIGManager manager;
            config.availability = [&, from = firstAvailable](int check) { return check >= from; };
            config.beforeAdding = [&](const auto&) { EXPECT_EQ(first.sizes().size() + second.sizes().size(), 1U); };
            config.duringSleep = [&, at = registersAtSleep](int sleep) {
                if (sleep == at) {
                    manager.registerCallback(second.callback());
                }
            };
            manager.registerCallback(first.callback());
            second.waitFor(registersAtSleep != 0 ? 1 : 0);
        }
        const bool isServed = firstAvailable != kNever;
        std::vector<std::string> messages(sleeps.size(), kNotAvailable);
        messages.insert(messages.end(), isServed ? 1 : 0, kAvailable);
        EXPECT_EQ(log.messages(), messages);
        EXPECT_EQ(config.sleeps(), sleeps);
        EXPECT_EQ(config.mostListeners(), isServed ? 1U : 0U);
        EXPECT_EQ(first.sizes().size(), isServed && registersAtSleep == 0 ? 1U : 0U);
        EXPECT_EQ(second.sizes().size(), registersAtSleep != 0 ? 1U : 0U);
    }
}

TEST_F(ManagerTest, ARegistrationWhileTheWatcherSleepsWakesIt) {
    config.asleep.emplace();
    config.availability = [](int check) { return check > 1; };
    manager->registerCallback(receiver.callback());
    config.asleep->get_future().wait();
    manager->registerCallback(second.callback());
    second.waitFor(1);
    destroy();
    EXPECT_THAT(receiver.sizes(), IsEmpty());
    EXPECT_THAT(log.messages(), ElementsAre(kNotAvailable, kAvailable));
}

TEST_F(ManagerTest, DeliversTheResponseOfEachNotificationUntilTheRegistrationIsOver) {
    int reads = 0;
    config.afterReading = [&] { ++reads; };
    registerAndListen(receiver.callback());
    for (const auto& response : {std::optional(documentNumber(3)), std::optional<std::string>("broken"), {}}) {
        config.setResponse(response);
        config.notify();
    }
    EXPECT_THAT(receiver.sizes(), ElementsAre(0, 3, 0, 0));
    EXPECT_EQ(reads, 1) << "a notification carries the property, so the service is not asked again";
    const std::function<void()> ends[] = {
        [&] {
            manager->registerCallback(second.callback());
            EXPECT_TRUE(log.sees(kAvailable, 2));
        },
        [&] { manager->deregisterCallback(); },
        [&] { destroy(); },
    };
    std::vector<fakes::Listener> earlier;
    for (const auto& end : ends) {
        const auto listeners = config.listeners();
        earlier.insert(earlier.end(), listeners.begin(), listeners.end());
        end();
        log.takeLines();
        for (const fakes::Listener& listener : earlier) {
            for (const std::string& response : {documentNumber(5), std::string(kBroken)}) {
                config.setResponse(response);
                config.notify(listener);
            }
        }
        EXPECT_THAT(log.messages(), Each(kUpdated));
    }
    EXPECT_THAT(receiver.sizes(), ElementsAre(0, 3, 0, 0));
    EXPECT_THAT(second.sizes(), ElementsAre(0));
}

TEST_F(ManagerTest, ListensWithoutACallbackButReadsNothing) {
    config.setResponse(kBroken);
    manager->deregisterCallback();
    manager->deregisterCallback();
    EXPECT_EQ(config.checks(), 0);
    manager->configureDeviceConfigService();
    EXPECT_TRUE(log.sees(kAvailable)) << "a deregistration without a registration changes nothing";
    config.notify();
    manager->configureDeviceConfigService();
    destroy();
    EXPECT_EQ(config.checks(), 1);
    manager = std::make_unique<VIGManager>();
    manager->registerCallback(nullptr);
    EXPECT_TRUE(log.sees(kAvailable, 2));
    config.notify();
    EXPECT_THAT(log.messages(), ElementsAre(kAvailable, kUpdated, kAvailable, kUpdated));
    EXPECT_EQ(config.mostListeners(), 1U);
}

// A registration goes through these.
enum class Moment { Asked, Checked, Read, Parsed, Delivered, Adding, Added };

// Tells when the operations that may be overridden are used.
class OverridingManager : public VIGManager {
  public:
    ~OverridingManager() override { stop(); }
    std::string getConfig() const override {
        const std::string response = VIGManager::getConfig();
        reached(Moment::Read);
        return response;
    }
    std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> parseResponse(const std::string& response) const override {
        reached(Moment::Parsed);
        return VIGManager::parseResponse(response);
    }
    void configureDeviceConfigService() override {
        reached(Moment::Asked);
        VIGManager::configureDeviceConfigService();
    }
    std::function<void(Moment)> reached = [](Moment) {};
};

TEST(ManagerRegistration, MayEndAtAnyMomentOnTheThreadThatBringsIt) {
    for (const Moment moment : {Moment::Asked, Moment::Checked, Moment::Read, Moment::Parsed, Moment::Delivered,
                                Moment::Adding, Moment::Added}) {
        for (const int calls : {1, 2, 3}) {
            const bool deregisters = calls != 2;
            const bool registers = calls != 1;
            SCOPED_TRACE(testing::Message() << static_cast<int>(moment) << deregisters << registers);
            fakes::FakeDeviceConfig config;
            config.setResponse(documentNumber(1));
            const support::LogCapture log;
            support::Receiver first, second;
            bool hasCome = false;
            std::promise<void> over;
            {
                OverridingManager manager;
                manager.reached = [&](Moment now) {
                    if (now == moment && !std::exchange(hasCome, true)) {
                        config.setResponse(documentNumber(2));
                        if (deregisters) {
                            EXPECT_LT(timed([&] { manager.deregisterCallback(); }), kSettleTimeout);
                        }
                        if (registers) {
                            manager.registerCallback(second.callback());
                        }
                        over.set_value();
                    }
                };
                config.availability = [&](int) {
                    manager.reached(Moment::Checked);
                    return true;
                };
                config.beforeAdding = [&](const auto&) { manager.reached(Moment::Adding); };
                config.onAdded = [&](const auto&) { manager.reached(Moment::Added); };
                manager.registerCallback([&, receive = first.callback()](auto&& configs) {
                    receive(std::move(configs));
                    manager.reached(Moment::Delivered);
                });
                over.get_future().wait();
                second.waitFor(registers ? 1 : 0);
            }
            EXPECT_EQ(first.sizes(), std::vector<std::size_t>(moment >= Moment::Delivered ? 1 : 0, 1));
            EXPECT_EQ(second.sizes(), std::vector<std::size_t>(registers ? 1 : 0, 2));
            EXPECT_EQ(log.messages(), std::vector<std::string>(registers ? 1 : 0, kAvailable));
            EXPECT_EQ(config.mostListeners(), registers || moment >= Moment::Adding ? 1U : 0U);
            EXPECT_EQ(config.checks() == 0, moment == Moment::Asked && !registers);
            EXPECT_THAT(config.listeners(), IsEmpty());
        }
    }
}

// There are more clients than calls of the service that end meanwhile, so that each end has to wake them all.
TEST_F(ManagerTest, DeregistrationsDuringTheRegistrationOfTheListenerWaitUntilItIsGone) {
    std::promise<void> added, mayReturn;
    config.onAdded = [&](const auto&) {
        added.set_value();
        mayReturn.get_future().wait();
    };
    std::array<support::Receiver, 3> receivers;
    std::vector<std::future<void>> deregistrations;
    for (support::Receiver& each : receivers) {
        manager->registerCallback(each.callback());
        if (deregistrations.empty()) {
            added.get_future().wait();
        }
        deregistrations.push_back(std::async(std::launch::async, [&] {
            EXPECT_LT(timed([&] { manager->deregisterCallback(); }), kSettleTimeout);
            EXPECT_THAT(config.listeners(), IsEmpty());
        }));
        while (each.uses() != 0) {
            std::this_thread::yield();
        }
    }
    mayReturn.set_value();
    deregistrations.clear();
    destroy();
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(ManagerTest, DeregistrationDoesNotWaitForAServiceThatDoesNotAnswer) {
    std::promise<void> adding, mayAdd;
    config.beforeAdding = [&](const auto&) {
        adding.set_value();
        mayAdd.get_future().wait();
    };
    manager->registerCallback(receiver.callback());
    adding.get_future().wait();
    EXPECT_LT(timed([&] { manager->deregisterCallback(); }), std::chrono::seconds(10));
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
    std::promise<void> ending, mayEnd;
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

TEST_F(ManagerTest, ADeliveryMayUseTheManagerThoughARemovalWaitsForItsEnd) {
    int deliveries = 0;
    std::promise<void> delivering, removing, followed;
    const auto next = followed.get_future();
    registerAndListen([&](auto&&) {
        if (++deliveries == 2) {
            delivering.set_value();
            removing.get_future().wait();
            EXPECT_LT(timed([&] { manager->deregisterCallback(); }), kSettleTimeout);
            manager->registerCallback([&](auto&&) { followed.set_value(); });
            EXPECT_EQ(next.wait_for(kMoment), std::future_status::timeout) << "deliveries come one at a time";
        }
    });
    auto notification = std::async(std::launch::async, [&] { config.notify(); });
    delivering.get_future().wait();
    config.beforeRemoving = [&, removals = 0](const auto&) mutable {
        if (++removals == 1) {
            removing.set_value();
            notification.wait();
        }
    };
    manager->deregisterCallback();
    next.wait();
    destroy();
    EXPECT_THAT(config.listeners(), IsEmpty());
}

TEST(ResponseListener, LivesUntilTheEndOfACallThoughItIsLetGoOfMeanwhile) {
    std::weak_ptr<ResponseListener> listener;
    std::shared_ptr<ResponseListener> held = std::make_shared<ResponseListener>([&](const auto&) {
        held.reset();
        EXPECT_FALSE(listener.expired());
    });
    listener = held;
    held->onPropertiesChanged(com::korvel::deviceconfig::Properties({}));
    EXPECT_TRUE(listener.expired());
}

TEST_F(ManagerTest, AListenerIsAddedOnlyWhenTheEarlierOneIsRemoved) {
    std::promise<void> removing, added;
    registerAndListen(receiver.callback());
    config.beforeAdding = [&](const auto&) { added.set_value(); };
    config.beforeRemoving = [&, removals = 0](const auto&) mutable {
        if (++removals == 1) {
            removing.set_value();
            second.waitFor(1);
            EXPECT_EQ(added.get_future().wait_for(kMoment), std::future_status::timeout);
        }
    };
    auto deregistration = std::async(std::launch::async, [&] { manager->deregisterCallback(); });
    removing.get_future().wait();
    manager->registerCallback(second.callback());
    EXPECT_TRUE(log.sees(kAvailable, 2));
    EXPECT_EQ(config.mostListeners(), 1U);
}

TEST_F(ManagerTest, TheDestructorLetsTheWatcherFinishButNotACallbackThatRegistersForEver) {
    int deliveries = 0;
    std::function<void()> registerAgain = [&, target = manager.get()] {
        target->registerCallback([&](auto&&) {
            ++deliveries;
            registerAgain();
        });
    };
    registerAgain();
    destroy();
    EXPECT_GE(deliveries, 1);
    EXPECT_THAT(config.listeners(), IsEmpty());
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

TEST_F(ManagerTest, AThreadThatCannotBeCreatedLeavesTheRegistrationThatHasTakenItsPlace) {
    OverridingManager refused;
    refused.reached = [&, isFirst = true](Moment) mutable {
        if (std::exchange(isFirst, false)) {
            refused.registerCallback(second.callback());
            throw std::system_error(EAGAIN, std::generic_category());
        }
    };
    EXPECT_THROW(refused.registerCallback(receiver.callback()), std::system_error);
    EXPECT_EQ(receiver.uses(), 0);
    EXPECT_TRUE(log.sees(kAvailable));
    config.notify();
    EXPECT_THAT(second.sizes(), ElementsAre(0, 0));
}

}  // namespace
