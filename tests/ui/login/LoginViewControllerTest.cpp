#include <gtest/gtest.h>

#include "device/DeviceInfoCollector.h"
#include "ovix/OvixEvents.h"
#include "ui/login/LoginTestSupport.h"
#include "ui/login/LoginViewController.h"

namespace ovix::test {
namespace {

using kit::host::WebError;
using kit::host::WebsiteDataType;
using testing::ScriptedWebView;

const std::string prefix = "window.onReceiveDeviceInfo(";

class LoginViewControllerTest : public LoginScreenTest {
  protected:
    /// Shows the login screen through the facade and returns it, laid out.
    std::shared_ptr<LoginViewController> showLogin() {
        OvixCore::shared().showLogin();
        auto screen = shownScreen<LoginViewController>();
        EXPECT_NE(screen, nullptr);
        h.mainQueue->runUntilIdle();
        window()->layoutIfNeeded();
        return screen;
    }

    std::shared_ptr<ScriptedWebView> page() const { return h.webEngine->lastWebView(); }

    std::string authUrl(const std::string& clientId) const {
        return OvixCore::shared().urlString() +
               "/auth-connect/api/v2.0/oauth2/auth?scope=account&response_type=token&response_mode=command"
               "&state=some_states&redirect_uri=https://default&access_type=offline&client_type=normal"
               "&os=ios&client_id=" +
               clientId;
    }

    /// Whether the last script handed the page this device's record.
    bool injectedTheDeviceRecord() const {
        const auto& scripts = page()->evaluatedScripts();
        if (scripts.empty() || scripts.back().rfind(prefix, 0) != 0 || !scripts.back().ends_with(");")) {
            return false;
        }
        const std::string& script = scripts.back();
        return Value::fromJson(script.substr(prefix.size(), script.size() - prefix.size() - 2)) ==
               Value::fromJson(Value(DeviceInfoCollector::buildDeviceInfoJson("", "")).toJson());
    }
};

TEST_F(LoginViewControllerTest, ShowLoginLoadsTheAuthorisationPageAsAPhoneBrowser) {
    setStored(SessionManager::shared().clientIdKey, "client-42");
    auto screen = showLogin();

    EXPECT_TRUE(window()->isKeyWindow());
    ASSERT_NE(screen->navigationController(), nullptr);
    EXPECT_TRUE(screen->navigationController()->isNavigationBarHidden());
    EXPECT_EQ(screen->view()->backgroundColor(), kit::Color::white());

    ASSERT_EQ(h.webEngine->madeCount(), 1u);
    auto web = page();
    ASSERT_EQ(web->loads().size(), 1u);
    EXPECT_EQ(web->loads()[0].url, authUrl("client-42"));
    EXPECT_EQ(web->loads()[0].timeoutInterval, 60.0);
    EXPECT_EQ(
        web->customUserAgent(),
        "Mozilla/5.0 (iPhone; CPU iPhone OS 16_6 like Mac OS X) AppleWebKit/605.1.15 (KHTML, like Gecko) "
        "Version/16.6 Mobile/15E148 Safari/604.1");
    EXPECT_TRUE(h.webEngine->dataStore->removals().empty());

    // The page fills the screen under the overlay and the (hidden) back button.
    EXPECT_EQ(web->frame(), (kit::Rect{0, 0, 390, 844}));
    EXPECT_EQ(screen->view()->subviews(),
              (std::vector<std::shared_ptr<kit::View>>{web, screen->loadingView(), screen->backButton()}));
    EXPECT_TRUE(screen->backButton()->isHidden());
}

TEST_F(LoginViewControllerTest, AnAddressThatDoesNotParseIsNotLoaded) {
    setStored(SessionManager::shared().clientIdKey, "two words");
    auto screen = showLogin();
    ASSERT_NE(page(), nullptr);
    EXPECT_TRUE(page()->loads().empty());
    EXPECT_TRUE(screen->loadingView()->progressView()->layer().animationKeys().empty());
}

TEST_F(LoginViewControllerTest, TheOverlayFillsItsBarOverFiveSecondsAndHidesPointEightSecondsAfterACommit) {
    auto screen = showLogin();
    auto loading = screen->loadingView();
    auto bar = loading->progressView();
    const double start = h.mainQueue->now();
    EXPECT_FALSE(loading->isHidden());
    EXPECT_EQ(bar->progress(), 1.0);
    EXPECT_NEAR(bar->presentationProgress(start + 2.5), 0.5, 0.25);
    EXPECT_EQ(bar->presentationProgress(start + 5.0), 1.0);

    // A failed load leaves it, and hands the page nothing.
    page()->startNavigation();
    page()->failNavigation(WebError{WebError::Kind::Network, "offline"});
    h.mainQueue->advance(2);
    EXPECT_FALSE(loading->isHidden());
    EXPECT_TRUE(page()->evaluatedScripts().empty());
    EXPECT_TRUE(h.console->lines().empty());

    page()->navigateFromPage(authUrl(""));
    page()->startNavigation();
    page()->commitNavigation();
    h.mainQueue->advance(0.79);
    EXPECT_FALSE(loading->isHidden());
    h.mainQueue->advance(0.01);
    EXPECT_TRUE(loading->isHidden());
    EXPECT_TRUE(bar->layer().animationKeys().empty());  // the fill stopped at once
    EXPECT_EQ(bar->presentationProgress(h.mainQueue->now()), 1.0);

    // Later navigations never show it again.
    page()->navigateFromPage("https://accounts.example/next");
    page()->completeNavigation();
    h.mainQueue->advance(1);
    EXPECT_TRUE(loading->isHidden());
}

TEST_F(LoginViewControllerTest, AScreenThatHasGoneIsKeptAliveByNeitherItsPageNorItsTimer) {
    auto screen = showLogin();
    auto loading = screen->loadingView();
    auto web = page();
    web->startNavigation();
    web->commitNavigation();
    std::weak_ptr<LoginViewController> weak = screen;
    window()->setRootViewController(kit::ViewController::create());
    screen.reset();
    EXPECT_TRUE(weak.expired());

    h.mainQueue->advance(1);
    EXPECT_FALSE(loading->isHidden());
    EXPECT_FALSE(web->postMessage("OvixLoginSuccess", Value(Dictionary{{"data", "abc"}})));
    web->finishNavigation();  // the delegate has gone too
    EXPECT_TRUE(web->evaluatedScripts().empty());
}

TEST_F(LoginViewControllerTest, EveryFinishedNavigationHandsThePageTheDeviceRecord) {
    showLogin();
    page()->completeNavigation();
    ASSERT_EQ(page()->evaluatedScripts().size(), 1u);
    EXPECT_TRUE(injectedTheDeviceRecord()) << page()->evaluatedScripts().back();
    EXPECT_TRUE(page()->answerScript());
    EXPECT_EQ(h.console->lines(), std::vector<std::string>{"✅ Sent device info to WebView"});

    page()->navigateFromPage(OvixCore::shared().urlString() + "/otp");
    page()->completeNavigation();
    ASSERT_EQ(page()->evaluatedScripts().size(), 2u);
    EXPECT_TRUE(injectedTheDeviceRecord()) << page()->evaluatedScripts().back();
    EXPECT_TRUE(page()->failScript(WebError{WebError::Kind::JavaScript, "TypeError: not a function"}));
    EXPECT_EQ(h.console->lines().back(),
              "❌ Failed to send device info: JavaScript error: TypeError: not a function");
}

TEST_F(LoginViewControllerTest, AwkwardCharactersReachThePageEscapedBackslashesFirst) {
    auto facts = h.deviceFacts->get();
    facts.deviceName = "A\\B'C\nD\rE";
    h.deviceFacts->set(facts);
    showLogin();
    page()->completeNavigation();
    ASSERT_EQ(page()->evaluatedScripts().size(), 1u);
    // JSON writes the name as "A\\B'C\nD\rE"; each backslash is doubled, the apostrophe escaped.
    EXPECT_NE(page()->evaluatedScripts()[0].find(R"("A\\\\B\'C\\nD\\rE")"), std::string::npos)
        << page()->evaluatedScripts()[0];
    // Raw line breaks, which JSON never leaves.
    EXPECT_EQ(LoginViewController::deviceInfoScript("{'\\\n\r}"),
              "window.onReceiveDeviceInfo({\\'\\\\\\n\\r});");
}

TEST_F(LoginViewControllerTest, TheBackButtonFollowsTheBackListAfterEachFinishedNavigation) {
    auto screen = showLogin();
    auto web = page();
    auto back = screen->backButton();
    web->completeNavigation();
    h.mainQueue->runUntilIdle();
    EXPECT_TRUE(back->isHidden());

    web->navigateFromPage("https://accounts.example/register");
    web->startNavigation();
    web->commitNavigation();
    EXPECT_TRUE(back->isHidden());  // only a finished navigation refreshes it
    web->finishNavigation();
    EXPECT_FALSE(back->isHidden());
    EXPECT_EQ(screen->webViewTopConstraint()->constant(), 80.0);

    // The web view slides down over 0.25 s.
    const double start = h.mainQueue->now();
    const double midway = web->presentation(start + 0.125).frame().origin.y;
    EXPECT_GT(midway, 0.0);
    EXPECT_LT(midway, 80.0);
    EXPECT_EQ(web->presentation(start + 0.25).frame().origin.y, 80.0);
    EXPECT_EQ(web->frame(), (kit::Rect{0, 80, 390, 764}));
    EXPECT_EQ(back->frame(), (kit::Rect{16, 47 + 8, 60, 36}));

    back->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(web->goBackCount(), 1);
    web->completeNavigation();
    EXPECT_TRUE(back->isHidden());
    h.mainQueue->advance(0.25);
    EXPECT_EQ(web->frame(), (kit::Rect{0, 0, 390, 844}));
}

TEST_F(LoginViewControllerTest, TheTokenMessageStoresTheTokenRaisesTheEventAndClosesThePresentedScreen) {
    // Presented over a game screen, so that closing it shows.
    auto game = kit::ViewController::create();
    window()->setRootViewController(game);
    window()->makeKeyAndVisible();
    game->present(kit::NavigationController::create(LoginViewController::create()), false);
    h.mainQueue->runUntilIdle();
    ASSERT_NE(game->presentedViewController(), nullptr);
    page()->completeNavigation();

    EXPECT_TRUE(page()->postMessage("OvixLoginSuccess", Value(Dictionary{{"data", "abc"}})));
    EXPECT_EQ(stored(SessionManager::shared().tokenKey), "abc");
    EXPECT_EQ(stored(SessionManager::shared().statusKey), "login");
    ASSERT_EQ(listener->received().size(), 1u);
    EXPECT_EQ(listener->received()[0].event, OvixEvents::LOGIN_SUCCESS);
    EXPECT_TRUE(listener->received()[0].data.isNull());
    h.mainQueue->advance(1);
    EXPECT_EQ(game->presentedViewController(), nullptr);
}

TEST_F(LoginViewControllerTest, MessagesWithoutAStringTokenChangeNothing) {
    auto screen = showLogin();
    page()->completeNavigation();
    for (const Value& body : {Value(Dictionary{{"data", 5}}), Value(Dictionary{{"token", "abc"}}),
                              Value("abc"), Value(Array{Value("abc")}), Value()}) {
        EXPECT_TRUE(page()->postMessage("OvixLoginSuccess", body)) << body;
    }
    // A channel the screen never opened, and a message under another name handed to it anyway.
    EXPECT_FALSE(page()->postMessage("Other", Value(Dictionary{{"data", "abc"}})));
    screen->userContentControllerDidReceiveScriptMessage(*page()->configuration().userContentController,
                                                         {"Other", Value(Dictionary{{"data", "abc"}})});

    EXPECT_FALSE(h.store->contains(SessionManager::shared().tokenKey));
    EXPECT_TRUE(listener->received().empty());
    EXPECT_EQ(shownScreen<LoginViewController>(), screen);
}

TEST_F(LoginViewControllerTest, AfterALogoutTheWebsiteDataIsWipedBeforeThePageLoads) {
    setStored(SessionManager::shared().statusKey, "logout");
    h.webEngine->dataStore->setHolding(true);
    auto screen = showLogin();

    ASSERT_EQ(h.webEngine->dataStore->removals().size(), 1u);
    const auto& removal = h.webEngine->dataStore->removals()[0];
    EXPECT_EQ(removal.types,
              (std::set<WebsiteDataType>{WebsiteDataType::Cookies, WebsiteDataType::SessionStorage,
                                         WebsiteDataType::LocalStorage, WebsiteDataType::IndexedDBDatabases,
                                         WebsiteDataType::WebSQLDatabases, WebsiteDataType::DiskCache,
                                         WebsiteDataType::MemoryCache}));
    EXPECT_EQ(removal.modifiedSince, Date{});
    EXPECT_EQ(h.webEngine->madeCount(), 0u);

    EXPECT_EQ(h.webEngine->dataStore->releaseHeld(), 1u);
    h.mainQueue->runUntilIdle();
    EXPECT_EQ(h.console->lines(), std::vector<std::string>{"🧹 WebView cache cleared"});
    ASSERT_NE(page(), nullptr);
    ASSERT_EQ(page()->loads().size(), 1u);
    EXPECT_EQ(page()->loads()[0].url, authUrl("")) << "no client id: the address ends at the parameter";
    EXPECT_EQ(stored(SessionManager::shared().statusKey), "logout");  // stays until the next token

    // The overlay and back button stay in front of the late web view.
    window()->layoutIfNeeded();
    EXPECT_EQ(screen->view()->subviews().back(), screen->backButton());
    EXPECT_EQ(screen->view()->subviews().front(), screen->webView());
}

TEST_F(LoginViewControllerTest, OtherStatusesLoadAtOnce) {
    for (const char* status : {"login", "LOGOUT", ""}) {
        setStored(SessionManager::shared().statusKey, status);
        showLogin();
        EXPECT_TRUE(h.webEngine->dataStore->removals().empty()) << status;
        ASSERT_NE(page(), nullptr);
        EXPECT_EQ(page()->loads().size(), 1u) << status;
    }
}

TEST_F(LoginViewControllerTest, AWipeFinishingAfterTheScreenWentLoadsNothing) {
    setStored(SessionManager::shared().statusKey, "logout");
    h.webEngine->dataStore->setHolding(true);
    showLogin();
    window()->setRootViewController(kit::ViewController::create());
    h.webEngine->dataStore->releaseHeld();
    h.mainQueue->runUntilIdle();
    EXPECT_TRUE(h.console->hasLine("🧹 WebView cache cleared"));
    EXPECT_EQ(h.webEngine->madeCount(), 0u);
}

TEST_F(LoginViewControllerTest, WithoutAWindowNothingIsShown) {
    auto none = testing::HeadlessPlatform::Options{};
    none.application.windowCount = 0;
    auto bare = testing::HeadlessPlatform::create(none);
    bare.install();
    OvixCore::shared().showLogin();
    OvixCore::shared().showSplash();
    bare.mainQueue->advance(2);
    EXPECT_EQ(bare.webEngine->madeCount(), 0u);
    EXPECT_EQ(bare.notificationCenter->requestCount(), 0);
}

TEST_F(LoginViewControllerTest, OnlyTheAccountsOriginIsTrustedAndOnlyOnce) {
    auto screen = showLogin();
    auto token = [] { return SessionManager::readString(SessionManager::shared().tokenKey); };
    // On the accounts page itself, a token past the limit is not a login.
    page()->completeNavigation();
    page()->postMessage("OvixLoginSuccess", Value(Dictionary{{"data", std::string(16 * 1024 + 1, 't')}}));
    EXPECT_EQ(h.console->count("⚠️ Login token ignored: longer than 16384 bytes"), 1u);
    struct Case {
        std::string url;
        bool trusted;
    };
    // The accounts host is the loopback server here, http://127.0.0.1:<port>.
    const std::string base = OvixCore::shared().urlString();
    const std::string port = base.substr(base.rfind(':') + 1);
    const Case pages[] = {{"https://evil.example/login", false},
                          {"https://127.0.0.1:" + port + "/auth", false},
                          {"http://127.0.0.1:" + std::to_string(std::stoi(port) + 1) + "/auth", false},
                          {"http://127.0.0.1.evil.example:" + port + "/", false},
                          {"HTTP://127.0.0.1:" + port + "/otp", true}};
    for (const auto& c : pages) {
        SCOPED_TRACE(c.url);
        const auto scriptsBefore = page()->evaluatedScripts().size();
        page()->navigateFromPage(c.url);
        page()->completeNavigation();
        EXPECT_EQ(page()->evaluatedScripts().size(), scriptsBefore + (c.trusted ? 1 : 0)) << "device record";
        page()->postMessage("OvixLoginSuccess", Value(Dictionary{{"data", "from-page"}}));
        EXPECT_EQ(token(), c.trusted ? "from-page" : "");
    }
    // Saved once: a later message to the same screen changes nothing and raises nothing.
    page()->postMessage("OvixLoginSuccess", Value(Dictionary{{"data", "again"}}));
    EXPECT_EQ(token(), "from-page");
    EXPECT_EQ(listener->received().size(), 1u);
}

}  // namespace
}  // namespace ovix::test
