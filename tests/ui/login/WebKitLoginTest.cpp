// The login screen on the real desktop engine: WebKitGTK under a private X server, the accounts
// host played by a loopback server, the main queue on GLib's main loop.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/gtk/GlibMainQueue.h"
#include "platform/gtk/GtkWindowHost.h"
#include "platform/webkitgtk/WebKitGtkEngine.h"
#include "support/GtkTestEnvironment.h"
#include "support/LoopbackServer.h"
#include "support/RecordingListener.h"
#include "support/ScratchDirectory.h"
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

/// One server for the process: the facade copies the accounts address once.
LoopbackServer& accountsHost() {
    static LoopbackServer server(LoopbackServer::Connections::OnePerRequest);
    return server;
}

class WebKitLoginTest : public ::testing::Test {
  protected:
    explicit WebKitLoginTest(std::filesystem::path codeResources = ".") {
        testing::HeadlessPlatform::Options options;
        options.codeResources = std::move(codeResources);
        options.environment = platform::Environment::emulator(accounts.baseUrl());
        h = testing::HeadlessPlatform::create(options);
        h.platform->mainQueue = std::make_shared<platform::gtk::GlibMainQueue>();
        h.platform->webEngine = std::make_shared<platform::webkitgtk::WebKitGtkEngine>(h.console);
        h.install();
        accounts.reset();
        accounts.page(authPath, loginPage, {{"Set-Cookie", "server=1; Path=/; Max-Age=3600"}});
        accounts.on("/echo", LoopbackServer::Reply{200, "{}"});
        OvixCore::shared().setListener(listener);
    }
    ~WebKitLoginTest() override { OvixCore::shared().setListener(nullptr); }

    std::size_t events() const { return listener->received().size(); }

    LoopbackServer& accounts = accountsHost();
    testing::HeadlessPlatform h;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

TEST_F(WebKitLoginTest, AfterALogoutTheCookiesThePageSetAreGone) {
    ASSERT_EQ(OvixCore::shared().urlString(), accounts.baseUrl());
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return events() == 1; }));

    // Shown again while logged in: the cookies come along.
    auto loads = accounts.countFor(authPath);
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return accounts.countFor(authPath) > loads; }));
    EXPECT_EQ(accounts.lastFor(authPath).header("User-Agent"), LoginViewController::customUserAgent);
    const std::string kept = accounts.lastFor(authPath).header("Cookie");
    EXPECT_NE(kept.find("server=1"), std::string::npos) << kept;
    EXPECT_NE(kept.find("page=1"), std::string::npos) << kept;
    ASSERT_TRUE(pumpUntil([&] { return events() == 2; }));

    OvixCore::shared().logout();
    loads = accounts.countFor(authPath);
    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return accounts.countFor(authPath) > loads; }));
    EXPECT_TRUE(h.console->hasLine("🧹 WebView cache cleared"));
    EXPECT_EQ(accounts.lastFor(authPath).header("Cookie"), "");
    ASSERT_TRUE(pumpUntil([&] { return events() == 4; }));  // the logout's event, then the new login
}

TEST_F(WebKitLoginTest, APageOfAnotherOriginGetsNoRecordAndCannotLogIn) {
    // The accounts page sends the player elsewhere; that page, and a frame of its own origin in it,
    // ask for the record and post a token.
    LoopbackServer other(LoopbackServer::Connections::OnePerRequest);
    const std::string grab = R"(<script>
window.onReceiveDeviceInfo = function (info) { fetch('/stolen', {method: 'POST', body: JSON.stringify(info)}); };
window.webkit.messageHandlers.OvixLoginSuccess.postMessage({data: 'forged'});
</script>)";
    other.page("/frame", grab);
    other.page("/page", grab + R"html(<iframe src="/frame" onload="fetch('/loaded')"></iframe>)html");
    other.on("/loaded", LoopbackServer::Reply{200, "{}"});
    accounts.page(authPath, "<script>location.href = '" + other.url("/page") + "';</script>");

    OvixCore::shared().showLogin();
    ASSERT_TRUE(pumpUntil([&] { return other.countFor("/loaded") == 1; }));
    pumpUntil([] { return false; }, 1.0);  // time for anything still on its way
    EXPECT_EQ(events(), 0u);
    EXPECT_EQ(SessionManager::readString(SessionManager::shared().tokenKey), "");
    EXPECT_EQ(other.countFor("/stolen"), 0u);
}

class Channel : public kit::host::ScriptMessageHandler {
  public:
    void userContentControllerDidReceiveScriptMessage(kit::host::UserContentController&,
                                                      const kit::host::ScriptMessage& message) override {
        bodies.push_back(message.body);
    }
    std::vector<Value> bodies;
};

TEST_F(WebKitLoginTest, AChannelOpenedAfterTheViewWasMadeReachesThePage) {
    kit::host::WebViewConfiguration configuration;
    auto view = h.platform->webEngine->makeWebView({0, 0, 100, 100}, configuration);
    auto channel = std::make_shared<Channel>();
    configuration.userContentController->addScriptMessageHandler(channel, "late");
    accounts.page("/late", "<script>window.webkit.messageHandlers.late.postMessage([1, 'two']);</script>");
    view->load({accounts.url("/late")});
    ASSERT_TRUE(pumpUntil([&] { return !channel->bodies.empty(); }));
    EXPECT_EQ(channel->bodies[0], Value(Array{Value(1u), Value("two")}));
}

/// The SDK's resources with its logo, drawn here: a red square.
struct LogoBundle {
    LogoBundle() {
        std::filesystem::create_directories(dir / "OvixSdkResources.bundle");
        cairo_surface_t* logo = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 300, 300);
        cairo_t* cr = cairo_create(logo);
        cairo_set_source_rgb(cr, 0.86, 0.12, 0.16);
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_write_to_png(logo, (dir / "OvixSdkResources.bundle" / "ic_sdk_splash.png").c_str());
        cairo_surface_destroy(logo);
    }
    ScratchDirectory dir{"ovix-login-window"};
};

// The login window as a player sees it on the desktop: the kit's views drawn around the real page.
class LoginWindowTest : private LogoBundle, public WebKitLoginTest {
  protected:
    LoginWindowTest() : WebKitLoginTest(dir.path()) {}

    /// Whether two 0xRRGGBB colours differ by at most `tolerance` in every channel.
    static bool near(unsigned a, unsigned b, int tolerance = 2) {
        for (int shift : {0, 8, 16}) {
            if (std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF)) >
                tolerance) {
                return false;
            }
        }
        return true;
    }

    /// The colour at a point of a PNG, as 0xRRGGBB.
    static unsigned pixel(const std::filesystem::path& png, int x, int y) {
        cairo_surface_t* image = cairo_image_surface_create_from_png(png.c_str());
        unsigned rgb = 0xFFFFFFFFu;
        if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
            const auto* row = cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image);
            rgb = reinterpret_cast<const std::uint32_t*>(row)[x] & 0xFFFFFFu;
        }
        cairo_surface_destroy(image);
        return rgb;
    }
};

TEST_F(LoginWindowTest, ThePageShowsUnderTheOverlayAndTheBackButton) {
    const std::string first = "/login-window/first";
    accounts.on(authPath, LoopbackServer::Reply{.stall = true});
    auto window = h.application->windows().front();
    platform::gtk::GtkWindowHost host(window, "Ovix login");
    host.present();
    OvixCore::shared().showLogin();
    auto screen = std::dynamic_pointer_cast<LoginViewController>(
        std::dynamic_pointer_cast<kit::NavigationController>(window->rootViewController())
            ->topViewController());
    ASSERT_NE(screen, nullptr);

    // While the page is on its way: the logo and the bar over an empty page.
    const auto loading = std::filesystem::current_path() / "login-window-loading.png";
    ASSERT_TRUE(pumpUntil([&] { return accounts.countFor(authPath) > 0 && host.writeSnapshot(loading); }));
    EXPECT_EQ(pixel(loading, 5, 5), 0xFFFFFFu);
    EXPECT_TRUE(near(pixel(loading, 127, 422), 0xDB1F29u)) << "the logo";  // 77 + 50, 372 + 50
    const unsigned track = pixel(loading, 310, 422);                       // the bar's far end: track only
    EXPECT_NE(track, 0xFFFFFFu);
    EXPECT_EQ(track >> 16, track & 0xFF) << "a grey track";

    // The page arrives; it moves on to a page of its own, and the back button comes.
    accounts.releaseStalled();
    accounts.page(authPath, "<html><body style='margin:0;background:#ffffff'>sign in</body></html>");
    accounts.page(first, "<html><body style='margin:0;background:#1e6bd6'><h1>Đăng nhập</h1></body></html>");
    screen->webView()->load({accounts.url(authPath)});
    ASSERT_TRUE(pumpUntil([&] { return screen->loadingView()->isHidden(); }));
    screen->webView()->evaluateJavaScript("location.href = '" + first + "'", {});
    ASSERT_TRUE(pumpUntil([&] {
        return !screen->backButton()->isHidden() &&
               screen->webView()->presentation(h.platform->mainQueue->now()).frame().origin.y == 80;
    }));
    const auto page = std::filesystem::current_path() / "login-window-page.png";
    ASSERT_TRUE(pumpUntil([&] { return host.writeSnapshot(page) && pixel(page, 200, 600) == 0x1E6BD6u; }))
        << "the page's own colour, drawn by WebKit";
    EXPECT_EQ(pixel(page, 300, 40), 0xFFFFFFu) << "the screen's white above the lowered page";
    EXPECT_TRUE(near(pixel(page, 20, 60), 0xFFFFFFu, 12)) << "inside the back button, over its shadow";
}

}  // namespace
}  // namespace ovix::test
