// The facade's guarded purchase: loading on the first call, the backend's eligibility answer from a
// loopback server, the purchase or the alert.
#include <gtest/gtest.h>

#include "PurchaseTestSupport.h"
#include "api/ApiTest.h"
#include "ovix/kit/AlertController.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"

namespace ovix::test {
namespace {

using platform::StoreTransaction;
using platform::VerificationResult;

// The API tests' loopback server and curl client, with a sandbox store selling "gems".
class PurchaseFlowTest : public PurchaseFixtureOn<ApiTest> {
  protected:
    void SetUp() override {
        PurchaseFixtureOn<ApiTest>::SetUp();
        store().setProducts({{"gems", "22.000 ₫"}});
    }

    void answer(LoopbackServer::Reply reply) { server.on("/billing/check", reply); }
    std::shared_ptr<kit::ViewController> giveFirstWindowARoot() {
        auto root = kit::ViewController::create();
        headless.application->windows().front()->setRootViewController(root);
        return root;
    }
    /// Loads "gems" the way a game does: a first purchaseProduct call.
    void loadGems() {
        await(OvixCore::shared().purchaseProduct("gems"));
        ASSERT_EQ(listener_->names(), std::vector<std::string>{"OvixBillingConnected"});
        listen();
    }
};

TEST_F(PurchaseFlowTest, TheFirstCallOnlyLoadsAndTheSecondAsksThenBuys) {
    answer({200, R"({"eligible": true})"});
    auto root = giveFirstWindowARoot();

    await(OvixCore::shared().purchaseProduct("gems"));
    EXPECT_EQ(listener_->names(), std::vector<std::string>{"OvixBillingConnected"});
    EXPECT_EQ(server.requests().size(), 0u);
    EXPECT_TRUE(store().purchaseRequests().empty());

    await(OvixCore::shared().purchaseProduct("gems"));
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_EQ(server.requests()[0].target, "/billing/check?productId=gems");
    auto received = listener_->received();
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[1].event, "OvixPurchaseUpdated");
    EXPECT_EQ(received[1].data.stringAt("productId"), "gems");
    for (const auto& r : received) {
        EXPECT_EQ(r.thread, store().callbackThread());
    }
    EXPECT_EQ(store().finishedTransactionIds().size(), 1u);

    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(root->presentedViewController(), nullptr);
}

TEST_F(PurchaseFlowTest, ARefusalOrAFailedCheckShowsItsAlertAndNeverReachesTheStore) {
    struct Case {
        LoopbackServer::Reply reply;
        std::string message;
    };
    const Case cases[] = {
        {{200, R"({"eligible": false})"}, "Không đủ điều kiện để thực hiện giao dịch"},
        {{200, "{}"}, "Có lỗi xảy ra vui lòng thử lại"},
        {{403, R"({"eligible": true})"}, "Có lỗi xảy ra vui lòng thử lại"},
    };
    loadGems();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reply.body + " / " + std::to_string(c.reply.status));
        answer(c.reply);
        auto root = giveFirstWindowARoot();

        await(OvixCore::shared().purchaseProduct("gems"));
        // Posted, not shown yet: the alert waits for its turn of the main queue.
        EXPECT_EQ(root->presentedViewController(), nullptr);
        headless.mainQueue->runUntilIdle();

        auto alert = std::dynamic_pointer_cast<kit::AlertController>(root->presentedViewController());
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(alert->alertTitle(), "Giao dịch thất bại");
        EXPECT_EQ(alert->message(), c.message);
        EXPECT_EQ(alert->preferredStyle(), kit::AlertControllerStyle::alert);
        ASSERT_EQ(alert->actions().size(), 1u);
        EXPECT_EQ(alert->actions()[0]->title(), "OK");
        EXPECT_EQ(alert->actions()[0]->style(), kit::AlertActionStyle::defaultStyle);
        EXPECT_FALSE(alert->actions()[0]->hasHandler());
        headless.mainQueue->advance(kit::ViewController::transitionDuration);  // let the fade-in end
    }
    EXPECT_TRUE(listener_->received().empty());
    EXPECT_TRUE(store().purchaseRequests().empty());
    EXPECT_EQ(server.requests().size(), 3u);
}

TEST_F(PurchaseFlowTest, OnlyTheFirstScenesFirstWindowsRootMayShowTheAlert) {
    answer({200, R"({"eligible": false})"});
    loadGems();
    auto refuse = [&] {
        await(OvixCore::shared().purchaseProduct("gems"));
        headless.mainQueue->runUntilIdle();
    };

    // The first window has no root: the second window's root is not asked instead.
    auto second = headless.application->addWindow();
    auto secondRoot = kit::ViewController::create();
    second->setRootViewController(secondRoot);
    refuse();
    EXPECT_EQ(secondRoot->presentedViewController(), nullptr);

    // The first scene has no window: a later scene's window is not asked instead.
    ovix::testing::HeadlessApplication::Options windowless;
    windowless.windowCount = 0;
    auto application = ovix::testing::HeadlessApplication::create(windowless);
    headless.platform->application = application;
    auto laterScene = kit::WindowScene::create(application->mainScreen());
    application->connectScene(laterScene);
    auto laterRoot = kit::ViewController::create();
    kit::Window::create(laterScene)->setRootViewController(laterRoot);
    refuse();
    EXPECT_EQ(laterRoot->presentedViewController(), nullptr);

    // No scene at all.
    application->disconnectScene(*application->connectedScenes().front());
    application->disconnectScene(*application->connectedScenes().front());
    ASSERT_TRUE(application->connectedScenes().empty());
    refuse();

    EXPECT_TRUE(listener_->received().empty());
    EXPECT_EQ(server.requests().size(), 3u);
}

TEST_F(PurchaseFlowTest, RestoreReturnsBeforeTheStoreAnswers) {
    store().setEntitlements({VerificationResult::verifiedTransaction(
        StoreTransaction{"vip", 7, Date(std::chrono::seconds(1714557600))})});
    // Hold the store's thread so that nothing can have been answered when restorePurchases returns.
    std::promise<void> gate;
    store().finish({"hold", 0, Date{}}, [wait = gate.get_future().share()] { wait.wait(); });

    OvixCore::shared().restorePurchases();
    EXPECT_TRUE(listener_->received().empty());
    gate.set_value();

    ASSERT_TRUE(headless.mainQueue->runUntil([&] { return listener_->received().size() == 1; }));
    EXPECT_EQ(listener_->names(), std::vector<std::string>{"OvixPurchaseRestored"});
    EXPECT_TRUE(headless.mainQueue->runUntil([&] { return store().finishedTransactionIds().size() == 2; }));
}

}  // namespace
}  // namespace ovix::test
