#include "ovix/OvixCore.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "api/APIService.h"
#include "core/SessionManager.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/platform/Platform.h"
#include "purchases/IAPManager.h"
#include "purchases/PurchaseAlert.h"
#include "push/FirebaseManager.h"
#include "ui/login/LoginViewController.h"
#include "ui/login/SplashViewController.h"

namespace ovix {

OvixCore& OvixCore::shared() {
    static OvixCore instance;
    return instance;
}

OvixCore::OvixCore()
    : urlString_(platform::current()->environment.accountsBaseUrl),
      urlGraph_(platform::current()->environment.graphBaseUrl) {}

std::shared_ptr<OvixSdkListener> OvixCore::listener() const {
    std::lock_guard lock(listenerMutex_);
    return listener_.lock();
}

void OvixCore::setListener(std::shared_ptr<OvixSdkListener> listener) {
    std::lock_guard lock(listenerMutex_);
    listener_ = listener;
}

void OvixCore::raise(std::string_view event, const Value& data) const {
    // A strong reference for the duration of the call: the game may drop its listener meanwhile.
    if (auto target = listener()) {
        target->onEventReceived(std::string(event), data);
    }
}

void OvixCore::initSdk(std::string_view clientId, std::string_view /*adjustToken*/,
                       std::string_view /*environmentAdjust*/, std::string_view /*admobID*/) {
    platform::current()->keyValueStore->setString(SessionManager::shared().clientIdKey, clientId);
    FirebaseManager::shared().configure();
}

void OvixCore::logout() {
    SessionManager::shared().clearToken();
    raise(OvixEvents::LOGOUT_SUCCESS);
}

void OvixCore::getUserInfo(std::function<void(std::optional<Dictionary>)> completion) {
    APIService::getUserInfo(std::move(completion));
}

std::future<void> OvixCore::purchaseProduct(std::string_view productId) {
    std::string id(productId);
    auto& manager = IAPManager::shared();
    auto loaded = manager.products();
    if (std::none_of(loaded.begin(), loaded.end(), [&id](const auto& product) { return product.id == id; })) {
        return manager.fetchProducts({id});
    }
    auto eligibility = APIService::checkEligibility(id);
    auto done = std::make_shared<std::promise<void>>();
    auto future = done->get_future();
    // The purchase's own task: it waits for the backend's answer, then for the purchase manager.
    std::thread([id = std::move(id), eligibility = std::move(eligibility), done]() mutable {
        auto answer = eligibility.get();
        if (answer && answer->eligible) {
            IAPManager::shared().purchase(id).wait();
        } else {
            PurchaseAlert::post(
                std::string(answer ? PurchaseAlert::notEligibleMessage : PurchaseAlert::failedMessage));
        }
        done->set_value();
    }).detach();
    return future;
}

void OvixCore::restorePurchases() {
    (void)IAPManager::shared().restorePurchases();
}

namespace {

// The screen becomes the root of the first window (not the key window) in a new navigation stack.
void installAsRoot(std::shared_ptr<kit::ViewController> screen) {
    auto navigation = kit::NavigationController::create(std::move(screen));
    const auto windows = platform::current()->application->windows();
    if (windows.empty()) {
        return;
    }
    windows.front()->setRootViewController(navigation);
    windows.front()->makeKeyAndVisible();
}

}  // namespace

void OvixCore::showSplash() {
    installAsRoot(SplashViewController::create());
}

void OvixCore::showLogin() {
    installAsRoot(LoginViewController::create());
}

std::string OvixCore::getTokenApp() const {
    return SessionManager::readString(SessionManager::shared().tokenKey);
}

void OvixCore::requestNotificationPermission(std::function<void(bool)> callback) {
    using platform::AuthorizationStatus;
    auto p = platform::current();
    auto center = p->notificationCenter;
    // Exactly once and always on the main queue, whatever thread and however often the centre answers.
    auto delivered = std::make_shared<std::atomic<bool>>(false);
    auto answer = [queue = p->mainQueue, delivered, callback = std::move(callback)](bool allowed) {
        if (delivered->exchange(true)) {
            return;
        }
        queue->async([callback, allowed] {
            if (callback) {
                callback(allowed);
            }
        });
    };
    center->getAuthorizationStatus([center, answer](AuthorizationStatus status) {
        switch (status) {
            case AuthorizationStatus::Authorized:
            case AuthorizationStatus::Provisional:
                answer(true);
                break;
            case AuthorizationStatus::NotDetermined: {
                using namespace platform::notification_options;
                center->requestAuthorization(
                    alert | sound | badge,
                    [answer](bool granted, const std::optional<std::string>&) { answer(granted); });
                break;
            }
            case AuthorizationStatus::Denied:
            default:
                answer(false);
                break;
        }
    });
}

}  // namespace ovix
