// The emulator's sign-in page in the real login screen: WebKitGTK under a private X server, the
// form filled in the page as a player would, the token handed over through the page bridge.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "EmulatorTestSupport.h"
#include "core/SessionManager.h"
#include "device/DeviceInfoCollector.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "platform/gtk/GlibMainQueue.h"
#include "platform/webkitgtk/WebKitGtkEngine.h"
#include "support/GtkTestEnvironment.h"
#include "support/RecordingListener.h"
#include "ui/login/LoginViewController.h"

namespace ovix::test {
namespace {

class EmulatorWebKitLoginTest : public ::testing::Test {
  protected:
    void SetUp() override {
        emu.faults().clearAll();
        emu.log().clear();
        ovix::testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(emu.accountsUrl());
        h = ovix::testing::HeadlessPlatform::create(options);
        h.platform->mainQueue = std::make_shared<platform::gtk::GlibMainQueue>();
        h.platform->webEngine = std::make_shared<platform::webkitgtk::WebKitGtkEngine>(h.console);
        h.install();
        h.store->setString(SessionManager::shared().clientIdKey, "demo-game");
        OvixCore::shared().setListener(listener);
    }
    void TearDown() override { OvixCore::shared().setListener(nullptr); }

    std::shared_ptr<kit::host::WebView> page() const {
        auto navigation = std::dynamic_pointer_cast<kit::NavigationController>(
            h.application->windows().front()->rootViewController());
        auto login =
            navigation ? std::dynamic_pointer_cast<LoginViewController>(navigation->viewControllers().front())
                       : nullptr;
        return login ? login->webView() : nullptr;
    }
    /// Runs `script` in the page and waits for its value.
    Value run(const std::string& script) const {
        std::optional<Value> result;
        page()->evaluateJavaScript(script, [&](const Value& value, const auto&) { result = value; });
        EXPECT_TRUE(pumpUntil([&] { return result.has_value(); }));
        return result.value_or(Value());
    }
    void submit(const std::string& username, const std::string& password) const {
        run("document.getElementById('username').value = " + nlohmann::json(username).dump() +
            "; document.getElementById('password').value = " + nlohmann::json(password).dump() +
            "; document.getElementById('submit').click(); 'sent'");
    }
    std::size_t signIns() const { return emu.log().entries("signin").size(); }

    emulator::EmulatorServer& emu = SharedEmulator::instance().server();
    ovix::testing::HeadlessPlatform h;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

TEST_F(EmulatorWebKitLoginTest, APlayerSignsInThroughTheEmulatorsPageAndTheGameGetsLoginSuccess) {
    ASSERT_EQ(OvixCore::shared().urlString(), emu.accountsUrl());
    OvixCore::shared().showLogin();

    // The page shows the record the SDK injected and hands it to the emulator.
    ASSERT_TRUE(pumpUntil([&] { return emu.deviceRecords().contains("demo-game"); }));
    EXPECT_EQ(emu.deviceRecords().at("demo-game"), nlohmann::json::parse(DeviceInfoCollector::toJsonString(
                                                       DeviceInfoCollector::buildDeviceInfoJson("", ""))));
    EXPECT_EQ(run("document.getElementById('device').textContent.indexOf('\"device_id\"') >= 0"),
              Value(true));

    submit("player1", "not-the-password");
    ASSERT_TRUE(pumpUntil([&] { return signIns() == 1; }));
    EXPECT_EQ(emu.log().entries("signin").back().status, 401);
    ASSERT_TRUE(pumpUntil([&] {
        return run("document.getElementById('error').textContent") ==
               Value("Sai tên đăng nhập hoặc mật khẩu");
    }));
    EXPECT_TRUE(listener->received().empty());

    submit("player1", "ovix123");
    ASSERT_TRUE(pumpUntil([&] { return !listener->received().empty(); }));
    EXPECT_EQ(listener->names(), std::vector<std::string>{"OvixLoginSuccess"});
    const auto token = SessionManager::readString(SessionManager::shared().tokenKey);
    EXPECT_TRUE(token.starts_with("emu_")) << token;

    // The token the page handed over is one the emulator knows.
    h.platform->http = std::make_shared<platform::CurlHttpClient>();
    const auto profile =
        Outcome<std::optional<Dictionary>>().run([](auto done) { OvixCore::shared().getUserInfo(done); });
    ASSERT_TRUE(profile.has_value());
    EXPECT_EQ(profile->at("username"), Value("player1"));
}

}  // namespace
}  // namespace ovix::test
