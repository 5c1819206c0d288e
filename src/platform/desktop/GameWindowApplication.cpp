#include "platform/desktop/GameWindowApplication.h"

#include <gio/gio.h>

#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"
#include "platform/unsupported/Unsupported.h"

namespace ovix::platform::desktop {

GameWindowApplication::GameWindowApplication(kit::Size contentSize, double scale,
                                             std::shared_ptr<Console> console)
    : console_(std::move(console)),
      screen_(makeScreen(contentSize, scale)),
      facts_{contentSize.width, contentSize.height, scale} {}

std::shared_ptr<kit::Screen> GameWindowApplication::makeScreen(kit::Size size, double scale) {
    const bool landscape = size.width > size.height;
    auto screen = std::make_shared<kit::Screen>(landscape ? kit::Size{size.height, size.width} : size, scale);
    screen->setOrientation(landscape ? kit::DeviceOrientation::landscapeRight
                                     : kit::DeviceOrientation::portrait);
    return screen;
}

void GameWindowApplication::ensureWindow() const {
    if (window_) {
        return;
    }
    scene_ = kit::WindowScene::create(screen_);
    window_ = kit::Window::create(scene_);
    // The game's side of the window: a clear root view that takes no input, so that the SDK's
    // screens can be presented over it as over a game's own root controller.
    window_->setRootViewController(kit::ViewController::create());
    window_->makeKeyAndVisible();
}

std::vector<std::shared_ptr<kit::WindowScene>> GameWindowApplication::connectedScenes() const {
    ensureWindow();
    return {scene_};
}

std::vector<std::shared_ptr<kit::Window>> GameWindowApplication::windows() const {
    ensureWindow();
    return {window_};
}

std::shared_ptr<kit::Window> GameWindowApplication::window() const {
    ensureWindow();
    return window_;
}

std::shared_ptr<kit::Screen> GameWindowApplication::mainScreen() const {
    return screen_;
}

void GameWindowApplication::resize(kit::Size size, double scale) {
    const kit::Rect before = screen_->bounds();
    if (before.size == size && screen_->scale() == scale) {
        return;
    }
    const bool wasLandscape = kit::isLandscape(screen_->orientation());
    screen_ = makeScreen(size, scale);
    {
        std::lock_guard lock(factsMutex_);
        facts_ = {size.width, size.height, scale};
    }
    ensureWindow();
    window_->setFrame({0, 0, size.width, size.height});
    if (kit::isLandscape(screen_->orientation()) != wasLandscape) {
        kit::NotificationCenter::defaultCenter().post(kit::deviceOrientationDidChangeNotification);
    }
}

ScreenFacts GameWindowApplication::screenFacts() const {
    std::lock_guard lock(factsMutex_);
    return facts_;
}

bool GameWindowApplication::open(const std::string& url) {
    GError* error = nullptr;
    if (g_app_info_launch_default_for_uri(url.c_str(), nullptr, &error)) {
        return true;
    }
    console_->printLine("Could not open " + url + ": " + (error ? error->message : "no handler"));
    g_clear_error(&error);
    return false;
}

bool GameWindowApplication::canOpen(const std::string& url) const {
    const char* scheme = g_uri_peek_scheme(url.c_str());  // interned, lower case
    if (scheme == nullptr) {
        return false;
    }
    GAppInfo* handler = g_app_info_get_default_for_uri_scheme(scheme);
    if (handler == nullptr) {
        return false;
    }
    g_object_unref(handler);
    return true;
}

void GameWindowApplication::registerForRemoteNotifications() {
    unsupported::report("Remote notifications");
}

}  // namespace ovix::platform::desktop
