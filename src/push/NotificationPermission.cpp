#include "push/NotificationPermission.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "ovix/platform/Platform.h"

namespace ovix {

void NotificationPermission::request(std::function<void(bool)> callback) {
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
