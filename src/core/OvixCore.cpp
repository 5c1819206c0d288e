#include "ovix/OvixCore.h"

#include <atomic>

#include "api/APIService.h"
#include "core/SessionManager.h"
#include "ovix/platform/Platform.h"
#include "push/FirebaseManager.h"

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

std::string OvixCore::getTokenApp() const { return SessionManager::readString(SessionManager::shared().tokenKey); }

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
                center->requestAuthorization(alert | sound | badge,
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
