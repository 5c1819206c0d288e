#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ovix/Value.h"

namespace ovix::platform {

enum class AuthorizationStatus { NotDetermined, Denied, Authorized, Provisional, Ephemeral };

/// Option bits for authorisation requests and foreground presentation.
namespace notification_options {
inline constexpr unsigned badge = 1;
inline constexpr unsigned sound = 2;
inline constexpr unsigned alert = 4;
inline constexpr unsigned list = 8;
inline constexpr unsigned banner = 16;
}  // namespace notification_options

/// Receives notifications while the application runs.
/// Threading: called on any thread; each completion must be called exactly once.
class NotificationCenterDelegate {
  public:
    virtual ~NotificationCenterDelegate() = default;
    /// A notification arrived in the foreground; answer with presentation option bits.
    virtual void willPresent(const Dictionary& userInfo,
                             std::function<void(unsigned options)> completion) = 0;
    /// The user tapped a notification.
    virtual void didReceive(const Dictionary& userInfo, std::function<void()> completion) = 0;
};

/// The platform's user-notification centre.
///
/// Threading: any thread; completions arrive on any thread (possibly inline), so callers that need
/// the main thread hop there themselves. The delegate is held weakly.
class NotificationCenter {
  public:
    virtual ~NotificationCenter() = default;
    virtual void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) = 0;
    /// Asks the user; `granted` is the answer, `error` set when the request itself failed.
    virtual void requestAuthorization(
        unsigned options, std::function<void(bool granted, std::optional<std::string> error)> completion) = 0;
    virtual void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) = 0;
};

}  // namespace ovix::platform
