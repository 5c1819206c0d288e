#include "ovix/OvixCore.h"

#include <algorithm>
#include <future>
#include <memory>

#include "api/APIService.h"
#include "core/Endpoints.h"
#include "core/EventSlot.h"
#include "core/SessionManager.h"
#include "ovix/WarningButton.h"
#include "ovix/kit/Application.h"
#include "ovix/kit/Window.h"
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

// The addresses are copied once, by the endpoints, when the facade is created.
OvixCore::OvixCore() {
    (void)Endpoints::shared();
}

const std::string& OvixCore::urlString() const {
    return Endpoints::shared().urlString;
}

const std::string& OvixCore::urlGraph() const {
    return Endpoints::shared().urlGraph;
}

const std::string& OvixCore::topicFirebase() const {
    return Endpoints::shared().topicFirebase;
}

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
    auto done = std::make_shared<std::promise<void>>();
    auto future = done->get_future();
    // The answer arrives on the HTTP client's thread; the purchase starts from there and its own end
    // fulfils the future, so no thread waits for either.
    APIService::checkEligibility(id, [id, done](std::optional<UserEligibilityResponse> answer) {
        if (answer && answer->eligible) {
            IAPManager::shared().purchase(id, [done] { done->set_value(); });
            return;
        }
        PurchaseAlert::post(
            std::string(answer ? PurchaseAlert::notEligibleMessage : PurchaseAlert::failedMessage));
        done->set_value();
    });
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

// --- Floating button and the overlay's requests ---

void OvixCore::showFloatingButton(double size) {
    auto window = kit::Application::keyWindow();
    if (!window || floatingButton_) {
        return;
    }
    auto button = FloatingButton::create({100, 200, size, size});
    window->addSubview(button);
    floatingButton_ = std::move(button);
}

void OvixCore::hideFloatingButton() {
    if (floatingButton_) {
        floatingButton_->removeFromSuperview();
    }
    floatingButton_.reset();
}

std::shared_ptr<FloatingButton> OvixCore::floatingButton() const {
    return floatingButton_;
}

void OvixCore::getAllNews(std::function<void(std::optional<std::vector<NewsItem>>)> completion) {
    APIService::loadNews([completion = std::move(completion)](std::optional<std::vector<Dictionary>> feed) {
        if (!feed) {
            completion(std::nullopt);
            return;
        }
        std::vector<NewsItem> items;
        items.reserve(feed->size());
        for (const auto& element : *feed) {
            items.push_back(NewsItem::fromDictionary(element));
        }
        completion(std::move(items));
    });
}

void OvixCore::uploadImage(const platform::RgbaImage& picture,
                           std::function<void(std::optional<Dictionary>)> completion) {
    APIService::uploadImage(picture, std::move(completion));
}

// --- Warning button ---

void OvixCore::showWarningButton(kit::Point origin) {
    auto window = kit::Application::keyWindow();
    if (!window) {
        return;
    }
    if (warningButton_) {
        warningButton_->updatePosition(origin);
        warningButton_->updateState(WarningButtonState::normal, false);
        return;
    }
    auto button =
        WarningButton::create(kit::Image::named("ic_sdk_warning"), kit::Image::named("ic_sdk_warning_full"),
                              {40, 40}, {150, 60}, origin);
    window->addSubview(button);
    warningButton_ = std::move(button);
}

void OvixCore::hideWarningButton() {
    if (warningButton_) {
        warningButton_->removeFromSuperview();
    }
    warningButton_.reset();
}

}  // namespace ovix
