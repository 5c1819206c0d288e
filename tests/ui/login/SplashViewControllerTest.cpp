#include <gtest/gtest.h>

#include "ovix/OvixEvents.h"
#include "ovix/kit/ImageView.h"
#include "ui/login/LoginTestSupport.h"
#include "ui/login/LoginViewController.h"
#include "ui/login/SplashViewController.h"

namespace ovix::test {
namespace {

using platform::AuthorizationStatus;

class SplashViewControllerTest : public LoginScreenTest {
  protected:
    std::shared_ptr<SplashViewController> showSplash() {
        OvixCore::shared().showSplash();
        auto splash = shownScreen<SplashViewController>();
        EXPECT_NE(splash, nullptr);
        return splash;
    }

    /// Runs the permission answer, then everything up to just before the routing delay ends.
    void answerAndWaitAlmostASecond() {
        h.mainQueue->runUntilIdle();
        h.mainQueue->advance(0.999);
    }

    /// Ends the routing delay, then waits (real time, bounded) for the user-info answer to come back
    /// to the main queue.
    bool routed() {
        h.mainQueue->advance(0.001);
        return h.mainQueue->runUntil(
            [&] { return shownScreen<LoginViewController>() != nullptr || !listener->received().empty(); });
    }
};

TEST_F(SplashViewControllerTest, TheLogoIsCentredAndStaysCentred) {
    auto splash = showSplash();
    auto root = splash->view();
    EXPECT_EQ(root->backgroundColor(), kit::Color::white());
    ASSERT_EQ(root->subviews().size(), 1u);
    auto logo = std::dynamic_pointer_cast<kit::ImageView>(root->subviews()[0]);
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(logo->image()->name(), "ic_sdk_splash");
    EXPECT_EQ(logo->contentMode(), kit::ContentMode::scaleAspectFit);
    EXPECT_EQ(logo->frame(), (kit::Rect{95, 322, 200, 200}));

    h.application->rotate(kit::DeviceOrientation::landscapeLeft);
    window()->layoutIfNeeded();
    EXPECT_EQ(logo->frame(), (kit::Rect{322, 95, 200, 200}));
}

TEST_F(SplashViewControllerTest, WithoutATokenTheLoginScreenFollowsOneSecondAfterTheAnswer) {
    h.notificationCenter->setStatus(AuthorizationStatus::NotDetermined);
    h.notificationCenter->setAnswer(false);
    showSplash();
    answerAndWaitAlmostASecond();
    EXPECT_EQ(h.notificationCenter->requestCount(), 1);
    EXPECT_NE(shownScreen<SplashViewController>(), nullptr);

    h.mainQueue->advance(0.001);
    EXPECT_NE(shownScreen<LoginViewController>(), nullptr);
    EXPECT_TRUE(h.webEngine->dataStore->removals().empty()) << "no session, so none cleared";
    EXPECT_TRUE(listener->received().empty());
}

TEST_F(SplashViewControllerTest, AValidStoredTokenRaisesTheEventAndTheSplashStays) {
    setStored(SessionManager::shared().tokenKey, "token-1");
    h.notificationCenter->setStatus(AuthorizationStatus::Authorized);
    auto splash = showSplash();
    answerAndWaitAlmostASecond();
    ASSERT_TRUE(routed());
    EXPECT_EQ(accounts.countFor(userInfoPath), 1u);
    ASSERT_EQ(listener->received().size(), 1u);
    EXPECT_EQ(listener->received()[0].event, OvixEvents::LOGIN_SUCCESS);
    EXPECT_TRUE(listener->received()[0].data.isNull());
    EXPECT_EQ(shownScreen<SplashViewController>(), splash);
    EXPECT_EQ(stored(SessionManager::shared().tokenKey), "token-1");
}

TEST_F(SplashViewControllerTest, ARejectedTokenClearsTheSessionAndShowsALoginThatWipesFirst) {
    setStored(SessionManager::shared().tokenKey, "expired");
    setStored(SessionManager::shared().statusKey, "login");
    accounts.on(userInfoPath, LoopbackServer::Reply{401, "{}"});
    showSplash();
    answerAndWaitAlmostASecond();

    ASSERT_TRUE(routed());
    EXPECT_NE(shownScreen<LoginViewController>(), nullptr);
    EXPECT_FALSE(h.store->contains(SessionManager::shared().tokenKey));
    EXPECT_EQ(stored(SessionManager::shared().statusKey), "logout");
    EXPECT_EQ(h.webEngine->dataStore->removals().size(), 1u);
    EXPECT_TRUE(listener->received().empty());
}

TEST_F(SplashViewControllerTest, ASplashReleasedBeforeTheAnswerOrTheDelayRoutesNothing) {
    SplashViewController::create()->loadViewIfNeeded();  // asks; the answer waits on the main queue
    EXPECT_EQ(h.mainQueue->pendingCount(), 1u);
    h.mainQueue->runUntilIdle();
    EXPECT_EQ(h.mainQueue->pendingCount(), 0u) << "no routing scheduled";

    showSplash();
    h.mainQueue->runUntilIdle();  // the answer came, the routing is scheduled
    EXPECT_EQ(h.mainQueue->pendingCount(), 1u);
    auto game = kit::ViewController::create();
    window()->setRootViewController(game);
    h.mainQueue->advance(2);
    EXPECT_EQ(window()->rootViewController(), game) << "no login screen over the game";
}

class SplashWithoutLogoTest : public LoginScreenTest {
  protected:
    SplashWithoutLogoTest() : LoginScreenTest(false) {}
};

TEST_F(SplashWithoutLogoTest, AMissingLogoLeavesTheSplashPlainAndTheIconEmpty) {
    OvixCore::shared().showSplash();
    auto splash = shownScreen<SplashViewController>();
    ASSERT_NE(splash, nullptr);
    EXPECT_TRUE(splash->view()->subviews().empty());
    h.mainQueue->runUntilIdle();
    h.mainQueue->advance(1);
    auto login = shownScreen<LoginViewController>();
    ASSERT_NE(login, nullptr);
    EXPECT_EQ(login->loadingView()->iconView()->image(), nullptr);
}

}  // namespace
}  // namespace ovix::test
