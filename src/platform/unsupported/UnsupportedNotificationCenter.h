#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// No notification centre: authorisation is denied, requests are refused with an error.
class UnsupportedNotificationCenter : public NotificationCenter {
  public:
    void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) override {
        unsupported::later([completion = std::move(completion)] { completion(AuthorizationStatus::Denied); });
    }
    void requestAuthorization(unsigned,
                              std::function<void(bool, std::optional<std::string>)> completion) override {
        unsupported::later([completion = std::move(completion)] {
            completion(false, unsupported::message("Notifications"));
        });
    }
    void setDelegate(std::weak_ptr<NotificationCenterDelegate>) override {}
};

}  // namespace ovix::platform
