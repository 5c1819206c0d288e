// The login screen on the real desktop engine: WebKitGTK under a private X server, the accounts
// host played by a loopback server, the main queue on GLib's main loop.
#include <gtest/gtest.h>

#include "core/RecordingListener.h"
#include "core/SessionManager.h"
#include "device/DeviceInfoCollector.h"
#include "login/GtkTestEnvironment.h"
#include "login/PageServer.h"
#include "ovix/OvixCore.h"
#include "ovix/OvixEvents.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/gtk/GlibMainQueue.h"
#include "platform/webkitgtk/WebKitGtkEngine.h"
#include "ui/login/LoginViewController.h"

namespace ovix::test {
namespace {

const std::string authPath = "/auth-connect/api/v2.0/oauth2/auth";

// The login page's side of the contract: take the record, show it back to the server, set a cookie,
// hand over the token.
const std::string loginPage = R"(<html><body><script>
window.onReceiveDeviceInfo = function (info) {
  document.cookie = 'page=1; path=/; max-age=3600';
  fetch('/echo', {method: 'POST', body: JSON.stringify(info)}).then(function () {
    window.webkit.messageHandlers.OvixLoginSuccess.postMessage({data: 'abc'});
  });
};
</script></body></html>)";

/// `value` with every number as a double: JavaScript has only one kind of number (3.0 comes back as 3).
Value asJavaScriptSees(const Value& value) {
    if (auto object = value.asObject()) {
        Dictionary out;
        for (const auto& [key, member] : *object) {
            out.emplace(key, asJavaScriptSees(member));
        }
        return out;
    }
    if (auto array = value.asArray()) {
        Array out;
        for (const auto& item : *array) {
            out.push_back(asJavaScriptSees(item));
        }
        return out;
    }
    if (auto i = value.asInt()) {
        return static_cast<double>(*i);
    }
    if (auto u = value.asUInt()) {
        return static_cast<double>(*u);
    }
    return value;
}

/// One server for the process: the facade copies the accounts address once.
PageServer& accounts() {
    static PageServer server;
    return server;
}

class WebKitLoginTest : public ::testing::Test {
  protected:
    WebKitLoginTest() {
        testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(accounts().url(""));
        h = testing::HeadlessPlatform::create(options);
        h.platform->mainQueue = std::make_shared<platform::gtk::GlibMainQueue>();
        h.platform->webEngine = std::make_shared<platform::webkitgtk::WebKitGtkEngine>(h.console);
        h.install();
        accounts().page(authPath, loginPage, {{"Set-Cookie", "server=1; Path=/; Max-Age=3600"}});
        OvixCore::shared().setListener(listener);
    }
    ~WebKitLoginTest() override { OvixCore::shared().setListener(nullptr); }

    std::size_t events() const { return listener->received().size(); }

    testing::HeadlessPlatform h;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

TEST_F(WebKitLoginTest, ThePageGetsTheDeviceRecordAndHandsBackTheToken) {
    ASSERT_EQ(OvixCore::shared().urlString(), accounts().url(""));
    h.store->setString(SessionManager::shared().clientIdKey, "client-7");
    const auto before = accounts().countFor("/echo");
    OvixCore::shared().showLogin();

    ASSERT_TRUE(pumpUntil([&] { return events() == 1; }));
    EXPECT_EQ(listener->received()[0].event, OvixEvents::LOGIN_SUCCESS);
    EXPECT_TRUE(listener->received()[0].data.isNull());
    EXPECT_EQ(SessionManager::readString(SessionManager::shared().tokenKey), "abc");
    EXPECT_EQ(SessionManager::readString(SessionManager::shared().statusKey), "login");

    const auto page = accounts().lastFor(authPath);
    EXPECT_EQ(page.userAgent, LoginViewController::customUserAgent);
    EXPECT_TRUE(page.target.ends_with("&os=ios&client_id=client-7")) << page.target;
    ASSERT_EQ(accounts().countFor("/echo"), before + 1);
    const auto echoed = Value::fromJson(accounts().lastFor("/echo").body);
    ASSERT_TRUE(echoed.has_value());
    EXPECT_EQ(asJavaScriptSees(*echoed),
              asJavaScriptSees(Value(DeviceInfoCollector::buildDeviceInfoJson("", ""))));

    ASSERT_TRUE(pumpUntil([&] { return h.console->hasLine("✅ Sent device info to WebView"); }));
    // The overlay goes 0.8 s after the page committed.
    auto navigation = std::dynamic_pointer_cast<kit::NavigationController>(
        h.application->windows().front()->rootViewController());
    auto screen = std::dynamic_pointer_cast<LoginViewController>(navigation->topViewController());
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(pumpUntil([&] { return screen->loadingView()->isHidden(); }));
}

TEST_F(WebKitLoginTest, AfterALogoutTheCookiesThePageSetAreGone) {
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return events() == 1; }));

    // Shown again while logged in: the cookies come along.
    auto loads = accounts().countFor(authPath);
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return accounts().countFor(authPath) > loads; }));
    const std::string kept = accounts().lastFor(authPath).cookie;
    EXPECT_NE(kept.find("server=1"), std::string::npos) << kept;
    EXPECT_NE(kept.find("page=1"), std::string::npos) << kept;
    ASSERT_TRUE(pumpUntil([&] { return events() == 2; }));

    OvixCore::shared().logout();
    loads = accounts().countFor(authPath);
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return accounts().countFor(authPath) > loads; }));
    EXPECT_TRUE(h.console->hasLine("🧹 WebView cache cleared"));
    EXPECT_EQ(accounts().lastFor(authPath).cookie, "");
    ASSERT_TRUE(pumpUntil([&] { return events() == 4; }));  // the logout's event, then the new login
}

class Channel : public platform::ScriptMessageHandler {
  public:
    void userContentControllerDidReceiveScriptMessage(platform::UserContentController&,
                                                      const platform::ScriptMessage& message) override {
        bodies.push_back(message.body);
    }
    std::vector<Value> bodies;
};

TEST_F(WebKitLoginTest, AChannelOpenedAfterTheViewWasMadeReachesThePage) {
    platform::WebViewConfiguration configuration;
    auto view = h.platform->webEngine->makeWebView({0, 0, 100, 100}, configuration);
    auto channel = std::make_shared<Channel>();
    configuration.userContentController->addScriptMessageHandler(channel, "late");
    accounts().page("/late", "<script>window.webkit.messageHandlers.late.postMessage([1, 'two']);</script>");
    view->load({accounts().url("/late")});
    ASSERT_TRUE(pumpUntil([&] { return !channel->bodies.empty(); }));
    EXPECT_EQ(channel->bodies[0], Value(Array{Value(1u), Value("two")}));
}

}  // namespace
}  // namespace ovix::test
