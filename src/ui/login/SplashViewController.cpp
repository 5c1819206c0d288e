#include "ui/login/SplashViewController.h"

#include "api/APIService.h"
#include "core/EventSlot.h"
#include "core/SessionManager.h"
#include "ovix/OvixEvents.h"
#include "ovix/kit/ImageView.h"
#include "ovix/platform/Platform.h"
#include "push/NotificationPermission.h"
#include "ui/ScreenRoot.h"
#include "ui/login/LoginViewController.h"

namespace ovix {

void SplashViewController::viewDidLoad() {
    kit::ViewController::viewDidLoad();
    view()->setBackgroundColor(kit::Color::white());
    setupLogo();
    requestPermission();
}

void SplashViewController::setupLogo() {
    auto image = kit::Image::named("ic_sdk_splash");
    if (!image) {
        return;
    }
    auto root = view();
    const kit::Rect bounds = root->bounds();
    auto logo = kit::ImageView::create(image);
    logo->setContentMode(kit::ContentMode::scaleAspectFit);
    logo->setFrame(
        {(bounds.size.width - logoSide) / 2, (bounds.size.height - logoSide) / 2, logoSide, logoSide});
    logo->setAutoresizingMask(
        kit::AutoresizingMask::flexibleLeftMargin | kit::AutoresizingMask::flexibleRightMargin |
        kit::AutoresizingMask::flexibleTopMargin | kit::AutoresizingMask::flexibleBottomMargin);
    root->addSubview(logo);
}

void SplashViewController::requestPermission() {
    std::weak_ptr<SplashViewController> weak = self<SplashViewController>();
    // The answer arrives on the main queue.
    NotificationPermission::request([weak](bool) {
        if (weak.expired()) {
            return;
        }
        platform::current()->mainQueue->asyncAfter(routingDelay, [weak] {
            if (!weak.expired()) {
                routeAfterSplash();
            }
        });
    });
}

void SplashViewController::routeAfterSplash() {
    if (SessionManager::readString(SessionManager::shared().tokenKey).empty()) {
        ScreenRoot::install(LoginViewController::create());
        return;
    }
    APIService::getUserInfo([](std::optional<Dictionary> info) {
        // The answer comes on the transport's thread; screens change on the main queue.
        platform::current()->mainQueue->async([found = info.has_value()] {
            if (!found) {
                SessionManager::shared().clearToken();
                ScreenRoot::install(LoginViewController::create());
            } else {
                EventSlot::shared().raise(OvixEvents::LOGIN_SUCCESS);
            }
        });
    });
}

}  // namespace ovix
