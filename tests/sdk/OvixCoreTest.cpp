#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "support/RecordingListener.h"

namespace {

using ovix::OvixCore;
using ovix::OvixEvents;
using ovix::test::RecordingListener;

class Core : public ::testing::Test {
  protected:
    void SetUp() override { headless.install(); }
    void TearDown() override { core.setListener(nullptr); }
    ovix::testing::HeadlessPlatform headless = ovix::testing::HeadlessPlatform::create();
    OvixCore& core = OvixCore::shared();
};

TEST_F(Core, LogoutClearsSessionAndRaisesOneEventWithNullData) {
    auto listener = std::make_shared<RecordingListener>();
    core.setListener(listener);
    headless.store->setString("ovix_token", "t");
    core.logout();
    auto got = listener->received();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].event, "OvixLogoutSuccess");
    EXPECT_TRUE(got[0].data.isNull());
    EXPECT_EQ(got[0].thread, std::this_thread::get_id()) << "raised on the raising thread";
    EXPECT_EQ(core.getTokenApp(), "");
    EXPECT_EQ(headless.store->string("ovix_status"), "logout");
}

TEST_F(Core, ListenerIsHeldWeaklyAndReplaced) {
    auto first = std::make_shared<RecordingListener>();
    auto second = std::make_shared<RecordingListener>();
    core.setListener(first);
    core.setListener(second);
    core.raise(OvixEvents::LOGIN_SUCCESS);
    EXPECT_TRUE(first->received().empty());
    EXPECT_EQ(second->names(), std::vector<std::string>{"OvixLoginSuccess"});

    std::weak_ptr<RecordingListener> watch = second;
    second.reset();
    EXPECT_TRUE(watch.expired()) << "the SDK must not keep the listener alive";
    EXPECT_EQ(core.listener(), nullptr);
    core.logout();  // lost silently
}

// A listener that answers one event by raising another from inside its callback, as a game may.
class ChainingListener : public RecordingListener {
  public:
    void onEventReceived(const std::string& event, const ovix::Value& data) override {
        if (event == "OvixPurchaseUpdated") {
            OvixCore::shared().raise("GameOwnEvent");
        }
        RecordingListener::onEventReceived(event, data);
    }
};

TEST_F(Core, EveryNameArrivesExactlyEvenWhenRaisedFromInsideTheListener) {
    auto listener = std::make_shared<ChainingListener>();
    core.setListener(listener);
    const std::vector<std::string_view> names{OvixEvents::LOGIN_SUCCESS, OvixEvents::PURCHASE_UPDATED,
                                              OvixEvents::PURCHASES_RESTORED, "GameOwnEvent2"};
    for (auto name : names) {
        core.raise(name);
    }
    // A lock held across the call would hang here; a name reused across raises would come back wrong.
    EXPECT_EQ(listener->names(),
              (std::vector<std::string>{"OvixLoginSuccess", "GameOwnEvent", "OvixPurchaseUpdated",
                                        "OvixPurchaseRestored", "GameOwnEvent2"}));
}

TEST_F(Core, EventsBeforeAnyListenerAreNotReplayed) {
    core.setListener(nullptr);
    core.logout();
    auto listener = std::make_shared<RecordingListener>();
    core.setListener(listener);
    EXPECT_TRUE(listener->received().empty());
}

TEST_F(Core, ListenerReleasedOnOneThreadWhileAnotherRaises) {
    std::atomic<bool> stop{false};
    std::atomic<int> raised{0};
    std::thread raiser([&] {
        while (!stop) {
            core.raise(OvixEvents::PURCHASE_UPDATED, ovix::Value(ovix::Dictionary{{"n", ovix::Value(1)}}));
            ++raised;
        }
    });
    // Keep swapping until the raiser has demonstrably run alongside (a loaded machine may start it late).
    for (int round = 0; round < 200 || raised.load() < 200; ++round) {
        auto listener = std::make_shared<RecordingListener>();
        core.setListener(listener);
        std::this_thread::yield();
        listener.reset();  // the game drops it while events are being raised
    }
    stop = true;
    raiser.join();
    EXPECT_GT(raised.load(), 0);
    EXPECT_EQ(core.listener(), nullptr);
}

TEST_F(Core, InitSdkStoresClientIdAsGivenAndIgnoresTheRest) {
    core.initSdk("client-1", "adjust", "sandbox", "admob");
    EXPECT_EQ(headless.store->string("ovix_client_id"), "client-1");
    auto keysAfterFirst = headless.store->journal();

    core.initSdk("", "x", "y", "z");
    EXPECT_EQ(headless.store->string("ovix_client_id"), "") << "empty is stored, not skipped";
    EXPECT_TRUE(headless.store->contains("ovix_client_id"));

    core.initSdk("client-2", "", "", "");
    EXPECT_EQ(headless.store->string("ovix_client_id"), "client-2");
    for (const auto& entry : headless.store->journal()) {
        EXPECT_EQ(entry, "set ovix_client_id") << "the other arguments are never stored";
    }
}

}  // namespace
