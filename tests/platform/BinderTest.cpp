#include <binder/IServiceManager.h>
#include <gtest/gtest.h>
#include <host/Services.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>
#include <vendor/orlan/velora/BnTrigger.h>
#include <vendor/orlan/velora/ITrigger.h>

#include <thread>
#include <utility>

namespace {

using android::IBinder;
using android::sp;
using android::String16;
using android::binder::Status;
using vendor::orlan::velora::BnTrigger;
using vendor::orlan::velora::ITrigger;
using vendor::orlan::velora::TriggerContext;

struct Counted : android::RefBase {
    explicit Counted(int& count) : alive(count) { ++alive; }
    ~Counted() override { --alive; }

    int& alive;
};

struct Derived final : Counted {
    using Counted::Counted;
};

TEST(StrongPointer, ObjectLivesExactlyAsLongAsItsOwners) {
    int alive = 0;
    sp<Derived> first = sp<Derived>::make(alive);
    sp<Counted> second = first;
    sp<Derived> third(first.get());
    first = std::move(third);
    first = *&first;
    EXPECT_EQ(second, first);
    first.clear();
    EXPECT_EQ(first, nullptr);
    EXPECT_FALSE(first);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(&second->alive, &alive);
    second = sp<Derived>::make(alive);
    EXPECT_EQ(alive, 1);
    second = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(StrongPointer, OwnersMayComeAndGoOnSeveralThreads) {
    int alive = 0;
    {
        const auto object = sp<Counted>::make(alive);
        std::thread threads[4];
        for (std::thread& thread : threads) {
            thread = std::thread([object] {
                for (int turn = 0; turn < 10'000; ++turn) {
                    sp<Counted> copy = object;
                    copy.clear();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

struct FakeTrigger final : BnTrigger {
    explicit FakeTrigger(std::int32_t value) : code(value) {}
    Status trigger(const TriggerContext&) override { return Status::fromServiceSpecificError(code); }

    const std::int32_t code;
};

struct OtherService final : IBinder {
    sp<android::IInterface> queryLocalInterface(const String16&) override { return nullptr; }
};

TEST(ServiceManager, FindsTheServiceThatWasRegisteredLastUntilItIsRemoved) {
    const String16 name("vendor.orlan.velora.ITrigger/BinderTest");
    const auto manager = android::defaultServiceManager();
    sp<ITrigger> found = sp<FakeTrigger>::make(0);
    EXPECT_EQ(android::getService(name, &found), -2);
    EXPECT_EQ(found, nullptr);

    EXPECT_EQ(manager->addService(name, sp<FakeTrigger>::make(1)), 0);
    EXPECT_EQ(manager->addService(name, sp<FakeTrigger>::make(2)), 0);
    EXPECT_EQ(manager->addService(name, nullptr), android::BAD_VALUE);
    EXPECT_EQ(android::getService(name, &found), 0);
    EXPECT_EQ(found->trigger({}).serviceSpecificErrorCode(), 2);

    EXPECT_TRUE(host::removeService(name));
    EXPECT_FALSE(host::removeService(name));
    EXPECT_EQ(found->trigger({}).serviceSpecificErrorCode(), 2);
    EXPECT_EQ(android::getService(name, &found), android::NAME_NOT_FOUND);
}

TEST(ServiceManager, ServiceOfAnotherInterfaceIsNotFound) {
    const String16 name("some.other.IService/BinderTest");
    android::defaultServiceManager()->addService(name, sp<OtherService>::make());
    sp<ITrigger> found;
    EXPECT_EQ(android::getService(name, &found), android::NAME_NOT_FOUND);
    EXPECT_TRUE(host::removeService(name));
}

}  // namespace
