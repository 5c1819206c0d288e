// The desktop platform of a GTK game, for real: a game window under a private X server, GLib's main
// loop, GIO's URL handlers and application.
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <fstream>
#include <sstream>

#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/host/WebEngine.h"
#include "ovix/kit/host/WebView.h"
#include "ovix/platform/SandboxStore.h"
#include "platform/desktop/ActivityMainQueue.h"
#include "platform/desktop/GameWindowApplication.h"
#include "platform/desktop/GioNotificationCenter.h"
#include "platform/desktop/InstalledResourceBundle.h"
#include "platform/gtk/GlibMainQueue.h"
#include "platform/unsupported/Unsupported.h"
#include "support/GtkTestEnvironment.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

using platform::desktop::ActivityMainQueue;
using platform::desktop::GameWindowApplication;
using platform::desktop::GioNotificationCenter;

class DesktopPlatformTest : public ::testing::Test {
  protected:
    void SetUp() override {
        gameWindow = GTK_WINDOW(gtk_window_new());
        gtk_window_set_default_size(gameWindow, 800, 600);
        gtk_window_set_child(gameWindow, gtk_drawing_area_new());
        desktop::DesktopPlatform::Options options;
        options.storePath = scratch / "store.sqlite";
        platform = desktop::DesktopPlatform::create(gameWindow, options);
        platform::install(platform);
        application = std::dynamic_pointer_cast<GameWindowApplication>(platform->application);
        ASSERT_TRUE(application);
    }
    void TearDown() override { gtk_window_destroy(gameWindow); }

    ScratchDirectory scratch{"ovix-desktop"};
    GtkWindow* gameWindow = nullptr;
    std::shared_ptr<platform::Platform> platform;
    std::shared_ptr<GameWindowApplication> application;
};

TEST_F(DesktopPlatformTest, TheScreenIsTheGameWindowAndTurnsWithItsAspect) {
    // Before the window is shown, its default size stands for the screen.
    EXPECT_EQ(kit::Screen::main()->bounds(), (kit::Rect{0, 0, 800, 600}));
    EXPECT_TRUE(kit::isLandscape(kit::Screen::main()->orientation()));
    auto window = application->window();
    ASSERT_EQ(application->windows(), std::vector{window});
    EXPECT_TRUE(window->isKeyWindow());

    int turns = 0;
    auto token = std::make_shared<int>();
    kit::NotificationCenter::defaultCenter().addObserver(
        std::string(kit::deviceOrientationDidChangeNotification), token, [&] { ++turns; });
    struct Step {
        kit::Size size;
        double scale;
        int turnsAfter;
        bool landscape;
    };
    const Step steps[] = {
        {{1024, 700}, 1, 0, true},  // wider still: no turn
        {{1024, 700}, 1, 0, true},  // the same size again
        {{500, 900}, 2, 1, false},  // portrait
        {{600, 600}, 2, 1, false},  // square counts as portrait
        {{900, 500}, 2, 2, true},   // back to landscape
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(testing::Message() << step.size.width << "x" << step.size.height);
        application->resize(step.size, step.scale);
        EXPECT_EQ(turns, step.turnsAfter);
        EXPECT_EQ(kit::isLandscape(kit::Screen::main()->orientation()), step.landscape);
        EXPECT_EQ(kit::Screen::main()->bounds().size, step.size);
        EXPECT_EQ(window->frame(), (kit::Rect{{0, 0}, step.size}));
        const auto facts = platform->deviceFacts->screen();
        EXPECT_EQ(facts.width, step.size.width);
        EXPECT_EQ(facts.height, step.size.height);
        EXPECT_EQ(facts.scale, step.scale);
    }
}

TEST_F(DesktopPlatformTest, StoreWebPagesAndTheSdkImagesWorkOutOfTheBox) {
    EXPECT_NE(dynamic_cast<platform::desktop::ActivityMainQueue*>(platform->mainQueue.get()), nullptr);
    EXPECT_TRUE(platform->mainQueue->isMainThread());
    auto page = platform->webEngine->makeWebView({0, 0, 10, 10}, {});
    ASSERT_TRUE(page);
    EXPECT_EQ(page->className(), "WebView");
    platform->keyValueStore->setString("k", "v");
    EXPECT_EQ(platform->keyValueStore->string("k"), "v");
    EXPECT_TRUE(std::filesystem::exists(scratch / "store.sqlite"));
    // The SDK's images are found without the game copying them anywhere.
    EXPECT_EQ(platform->sdkBundle().directory().filename(), "OvixSdkResources.bundle");
    EXPECT_TRUE(platform->sdkBundle().imagePath("ic_sdk_float", 2)) << platform->sdkBundle().directory();
}

// A scheme handler of this run's own, in the XDG directories the test environment points at.
class UrlHandlerTest : public DesktopPlatformTest {
  protected:
    static void SetUpTestSuite() {
        const std::filesystem::path data = std::getenv("XDG_DATA_HOME");
        const std::filesystem::path config = std::getenv("XDG_CONFIG_HOME");
        std::filesystem::create_directories(data / "applications");
        opened() = data / "opened.txt";
        std::ofstream(data / "applications" / "ovix-test-handler.desktop")
            << "[Desktop Entry]\nType=Application\nName=Ovix test handler\n"
            << "Exec=sh -c 'printf %s \"$1\" > " << opened().string() << "' handler %u\n"
            << "MimeType=x-scheme-handler/ovixtest;\nNoDisplay=true\n";
        std::ofstream(config / "mimeapps.list")
            << "[Default Applications]\nx-scheme-handler/ovixtest=ovix-test-handler.desktop\n";
    }
    static std::filesystem::path& opened() {
        static std::filesystem::path path;
        return path;
    }
};

TEST_F(UrlHandlerTest, CanOpenAnswersFromTheSchemesDefaultHandler) {
    struct Case {
        const char* url;
        bool openable;
    } const cases[] = {
        {"ovixtest://account/42", true},
        {"OVIXTEST:upper-case-scheme", true},
        {"nohandler-ovix://x", false},
        {"no scheme at all", false},
        {"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.url);
        EXPECT_EQ(application->canOpen(c.url), c.openable);
    }
}

TEST_F(UrlHandlerTest, OpenLaunchesTheHandlerWithTheUrl) {
    std::filesystem::remove(opened());
    EXPECT_FALSE(application->open("nohandler-ovix://x"));
    ASSERT_TRUE(application->open("ovixtest://account/42?x=1"));
    ASSERT_TRUE(pumpUntil(
        [] { return std::filesystem::exists(opened()) && std::filesystem::file_size(opened()) > 0; }));
    std::stringstream text;
    text << std::ifstream(opened()).rdbuf();
    EXPECT_EQ(text.str(), "ovixtest://account/42?x=1");
}

TEST(ActivityMainQueueTest, ReportsAfterEachWorkItemAndStaysBusyOnlyForShortDelays) {
    auto inner = std::make_shared<platform::gtk::GlibMainQueue>();
    ActivityMainQueue queue(inner);
    std::vector<std::string> log;
    queue.setActivityListener([&] { log.push_back("activity"); });
    const double start = queue.now();
    queue.asyncAfter(30, [] {});  // a timer: nothing moves until then
    EXPECT_LT(queue.busyUntil(), start + 1);
    queue.asyncAfter(0.25, [&] { log.push_back("animation done"); });
    queue.asyncAfter(0.05, [&] { log.push_back("short"); });
    EXPECT_GE(queue.busyUntil(), start + 0.25);
    EXPECT_LT(queue.busyUntil(), start + 1);
    queue.async([&] { log.push_back("work"); });
    ASSERT_TRUE(pumpUntil([&] { return log.size() == 6; }));
    EXPECT_EQ(log, (std::vector<std::string>{"work", "activity", "short", "activity", "animation done",
                                             "activity"}));
}

TEST(InstalledResourceBundleTest, TheSdkBundleComesFromTheFirstDirectoryThatHasIt) {
    ScratchDirectory dirs("ovix-bundles");
    std::filesystem::create_directories(dirs / "second/OvixSdkResources.bundle");
    std::filesystem::create_directories(dirs / "third/OvixSdkResources.bundle");
    std::filesystem::create_directories(dirs / "first");
    const std::vector<std::filesystem::path> candidates{dirs / "missing", dirs / "first", dirs / "second",
                                                        dirs / "third"};
    ::unsetenv("OVIX_SDK_DIR");
    EXPECT_EQ(platform::desktop::InstalledResourceBundle(candidates).codeBundle().directory(),
              dirs / "second");
    // Nowhere: the executable's directory, like the game's own resources.
    platform::desktop::InstalledResourceBundle none({dirs / "first"});
    EXPECT_EQ(none.codeBundle().directory(), none.mainBundle().directory());
    ::setenv("OVIX_SDK_DIR", (dirs / "third").c_str(), 1);
    EXPECT_EQ(platform::desktop::InstalledResourceBundle(candidates).codeBundle().directory(),
              dirs / "third");
    ::unsetenv("OVIX_SDK_DIR");
}

class RecordingDelegate : public platform::NotificationCenterDelegate {
  public:
    explicit RecordingDelegate(unsigned answer) : answer_(answer) {}
    void willPresent(const Dictionary& userInfo, std::function<void(unsigned)> completion) override {
        presented.push_back(userInfo);
        completion(answer_);
    }
    void didReceive(const Dictionary& userInfo, std::function<void()> completion) override {
        tapped.push_back(userInfo);
        completion();
    }
    std::vector<Dictionary> presented;
    std::vector<Dictionary> tapped;

  private:
    unsigned answer_;
};

TEST(GioNotificationCenterTest, WithoutAnApplicationNotificationsAreUnsupported) {
    ASSERT_EQ(g_application_get_default(), nullptr);
    auto center = std::make_shared<GioNotificationCenter>(nullptr);
    std::optional<platform::AuthorizationStatus> status;
    center->getAuthorizationStatus([&](platform::AuthorizationStatus s) { status = s; });
    EXPECT_EQ(status, platform::AuthorizationStatus::Denied);
    std::optional<std::string> error;
    bool granted = true;
    center->requestAuthorization(platform::notification_options::alert,
                                 [&](bool g, std::optional<std::string> e) {
                                     granted = g;
                                     error = e;
                                 });
    EXPECT_FALSE(granted);
    EXPECT_EQ(error, platform::unsupported::message("Notifications"));
}

TEST(GioNotificationCenterTest, WithAnApplicationShownNotificationsComeBackWhenActivated) {
    GApplication* app = g_application_new("dev.ovix.DesktopTest", G_APPLICATION_NON_UNIQUE);
    ASSERT_TRUE(g_application_register(app, nullptr, nullptr));
    g_application_set_default(app);
    auto center = std::make_shared<GioNotificationCenter>(nullptr);
    bool granted = false;
    center->requestAuthorization(platform::notification_options::alert,
                                 [&](bool g, std::optional<std::string>) { granted = g; });
    EXPECT_TRUE(granted);

    auto silent = std::make_shared<RecordingDelegate>(platform::notification_options::sound);
    center->setDelegate(silent);
    center->deliver({{"title", Value("Quiet")}});
    pumpPending();
    EXPECT_EQ(silent->presented.size(), 1u);
    // Not shown, so nothing to activate yet.
    EXPECT_EQ(g_action_map_lookup_action(G_ACTION_MAP(app), GioNotificationCenter::tapAction), nullptr);

    auto banner = std::make_shared<RecordingDelegate>(platform::notification_options::banner);
    center->setDelegate(banner);
    const Dictionary payload{{"title", Value("Sự kiện")}, {"body", Value("Mở ngay")}, {"id", Value("7")}};
    center->deliver(payload);
    ASSERT_TRUE(pumpUntil([&] {
        return g_action_map_lookup_action(G_ACTION_MAP(app), GioNotificationCenter::tapAction) != nullptr;
    }));
    g_action_group_activate_action(G_ACTION_GROUP(app), GioNotificationCenter::tapAction,
                                   g_variant_new_string(Value(payload).toJson().c_str()));
    ASSERT_EQ(banner->tapped.size(), 1u);
    EXPECT_EQ(banner->tapped[0], payload);

    g_application_set_default(nullptr);
    center.reset();
    // The action outlives the centre and does nothing then.
    g_action_group_activate_action(G_ACTION_GROUP(app), GioNotificationCenter::tapAction,
                                   g_variant_new_string("{}"));
    EXPECT_EQ(banner->tapped.size(), 1u);
    g_object_unref(app);
}

}  // namespace
}  // namespace ovix::test
