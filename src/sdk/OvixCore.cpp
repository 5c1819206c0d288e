#include "ovix/OvixCore.h"

#include <algorithm>
#include <thread>

#include "api/APIService.h"
#include "core/Endpoints.h"
#include "core/EventSlot.h"
#include "core/SessionManager.h"
#include "ovix/platform/Platform.h"
#include "purchases/IAPManager.h"
#include "purchases/PurchaseAlert.h"
#include "push/FirebaseManager.h"
#include "push/NotificationPermission.h"
#include "ui/ScreenRoot.h"
#include "ui/login/LoginViewController.h"
#include "ui/login/SplashViewController.h"

namespace ovix {

OvixCore& OvixCore::shared() {
    static OvixCore instance;
    return instance;
}

OvixCore::OvixCore()
    : urlString_(Endpoints::shared().urlString),
      urlGraph_(Endpoints::shared().urlGraph),
      topicFirebase_(Endpoints::shared().topicFirebase) {}

std::shared_ptr<OvixSdkListener> OvixCore::listener() const {
    return EventSlot::shared().listener();
}

void OvixCore::setListener(std::shared_ptr<OvixSdkListener> listener) {
    EventSlot::shared().setListener(std::move(listener));
}

void OvixCore::raise(std::string_view event, const Value& data) const {
    EventSlot::shared().raise(event, data);
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

void OvixCore::showSplash() {
    ScreenRoot::install(SplashViewController::create());
}

void OvixCore::showLogin() {
    ScreenRoot::install(LoginViewController::create());
}

std::string OvixCore::getTokenApp() const {
    return SessionManager::readString(SessionManager::shared().tokenKey);
}

void OvixCore::requestNotificationPermission(std::function<void(bool)> callback) {
    NotificationPermission::request(std::move(callback));
}

}  // namespace ovix
