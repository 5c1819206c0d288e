// The facade's guarded purchase: loading on the first call, the backend's eligibility answer from a
// loopback server, the purchase or the alert.
#include <gtest/gtest.h>

#include "PurchaseTestSupport.h"
#include "ovix/kit/AlertController.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"

namespace ovix::test {
namespace {

using platform::VerificationResult;

// The API tests' loopback server and curl client, with a sandbox store selling "gems".
class PurchaseFlowTest : public PurchaseFixture {
  protected:
    void SetUp() override {
        PurchaseFixture::SetUp();
        store().setProducts({{"gems", "22.000 ₫"}});
        store().setLatency(0.05);  // so that a future that does not wait for the store shows
    }

    void answer(LoopbackServer::Reply reply) { server.on("/billing/check", reply); }
    std::shared_ptr<kit::ViewController> rootOf(const std::shared_ptr<kit::Window>& window) {
        auto root = kit::ViewController::create();
        window->setRootViewController(root);
        return root;
    }
    /// Buys "gems" and lets the main queue show whatever that posted.
    void buyGems() {
        await(OvixCore::shared().purchaseProduct("gems"));
        headless.mainQueue->runUntilIdle();
    }
    /// Loads "gems" the way a game does: a first purchaseProduct call.
    void loadGems() {
        buyGems();
        ASSERT_EQ(listener_->names(), std::vector<std::string>{"OvixBillingConnected"});
        listen();
    }
};

TEST_F(PurchaseFlowTest, TheFirstCallOnlyLoadsThenTheBackendsAnswerBuysOrShowsItsAlert) {
    const std::tuple<LoopbackServer::Reply, std::vector<std::string>, std::string> cases[] = {
        {{200, R"({"eligible": true})"}, {"OvixPurchaseUpdated"}, ""},
        {{200, R"({"eligible": false})"}, {}, "Không đủ điều kiện để thực hiện giao dịch"},
        {{403, R"({"eligible": true})"}, {}, "Có lỗi xảy ra vui lòng thử lại"},
    };
    loadGems();
    EXPECT_TRUE(server.requests().empty());
    EXPECT_TRUE(store().purchaseRequests().empty());
    for (const auto& [reply, events, message] : cases) {
        SCOPED_TRACE(reply.body + " / " + std::to_string(reply.status));
        server.reset();
        answer(reply);
        listen();
        auto root = rootOf(headless.application->windows().front());
        await(OvixCore::shared().purchaseProduct("gems"));
        EXPECT_EQ(listener_->names(), events) << "all raised by the time the future is ready";
        // Posted, not shown yet: an alert waits for its turn of the main queue.
        EXPECT_EQ(root->presentedViewController(), nullptr);
        headless.mainQueue->runUntilIdle();
        EXPECT_EQ(onlyRequest().target, "/billing/check?productId=gems");
        auto alert = std::dynamic_pointer_cast<kit::AlertController>(root->presentedViewController());
        ASSERT_EQ(alert != nullptr, !message.empty());
        if (alert != nullptr) {
            EXPECT_EQ(std::tuple(alert->alertTitle(), alert->message(), alert->preferredStyle(),
                                 alert->actions().size()),
                      std::tuple("Giao dịch thất bại", message, kit::AlertControllerStyle::alert, 1u));
            const auto& ok = *alert->actions().at(0);
            EXPECT_EQ(std::tuple(ok.title(), ok.style(), ok.hasHandler()),
                      std::tuple("OK", kit::AlertActionStyle::defaultStyle, false));
            headless.mainQueue->advance(kit::ViewController::transitionDuration);  // let the fade-in end
        }
    }
    EXPECT_EQ(store().purchaseRequests().size(), 1u) << "only the eligible purchase reaches the store";
}

TEST_F(PurchaseFlowTest, OnlyTheFirstScenesFirstWindowsRootMayShowTheAlert) {
    answer({200, R"({"eligible": false})"});
    loadGems();
    // The first window has no root: the second window's root is not asked instead.
    auto secondRoot = rootOf(headless.application->addWindow());
    buyGems();
    EXPECT_EQ(secondRoot->presentedViewController(), nullptr);

    // The first scene has no window: a later scene's window is not asked instead.
    ovix::testing::HeadlessApplication::Options windowless;
    windowless.windowCount = 0;
    auto application = ovix::testing::HeadlessApplication::create(windowless);
    headless.platform->application = application;
    auto laterScene = kit::WindowScene::create(application->mainScreen());
    application->connectScene(laterScene);
    auto laterRoot = rootOf(kit::Window::create(laterScene));
    buyGems();
    EXPECT_EQ(laterRoot->presentedViewController(), nullptr);

    // No scene at all.
    while (!application->connectedScenes().empty()) {
        application->disconnectScene(*application->connectedScenes().front());
    }
    buyGems();  // and nothing breaks
}

TEST_F(PurchaseFlowTest, RestoreReturnsBeforeTheStoreAnswers) {
    store().setEntitlements({VerificationResult::verifiedTransaction({"vip", 7, Date{}})});
    // Hold the store's thread so that nothing can have been answered when restorePurchases returns.
    std::promise<void> gate;
    store().finish({"hold", 0, Date{}}, [wait = gate.get_future().share()] { wait.wait(); });

    OvixCore::shared().restorePurchases();
    EXPECT_TRUE(listener_->received().empty());
    gate.set_value();

    ASSERT_TRUE(headless.mainQueue->runUntil([&] { return store().finishedTransactionIds().size() == 2; }));
    EXPECT_EQ(listener_->names(), std::vector<std::string>{"OvixPurchaseRestored"});
}

}  // namespace
}  // namespace ovix::test
