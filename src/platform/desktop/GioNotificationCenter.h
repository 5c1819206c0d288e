#pragma once

#include <memory>
#include <mutex>

#include "ovix/platform/Console.h"
#include "ovix/platform/NotificationCenter.h"

namespace ovix::platform::desktop {

/// Desktop notifications through the process's GApplication (`g_application_get_default`): the
/// desktop needs no permission, so with an application the status is authorised and requests are
/// granted; without one notifications are unsupported (status denied, requests refused with the
/// unsupported line).
///
/// `deliver` is the foreground path: the delegate chooses the presentation, and a banner, alert or
/// list choice is sent as a GNotification titled and worded from the payload's "title" and "body"
/// (strings). Activating the notification runs the application action "ovix-notification-tapped",
/// which hands the payload to the delegate's `didReceive`.
///
/// Threading: any thread; completions and delegate calls may come inline. Sending happens on the
/// default main context. The delegate is held weakly.
class GioNotificationCenter : public NotificationCenter,
                              public std::enable_shared_from_this<GioNotificationCenter> {
  public:
    static constexpr const char* tapAction = "ovix-notification-tapped";

    explicit GioNotificationCenter(std::shared_ptr<Console> console);

    void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) override;
    void requestAuthorization(
        unsigned options,
        std::function<void(bool granted, std::optional<std::string> error)> completion) override;
    void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) override;

    /// A notification for the running game arrived.
    void deliver(const Dictionary& userInfo);
    /// The user activated a notification carrying `payloadJson` (the action's parameter).
    void activated(const std::string& payloadJson);

  private:
    void send(const Dictionary& userInfo);
    void ensureTapAction();
    std::shared_ptr<NotificationCenterDelegate> delegate() const;

    std::shared_ptr<Console> console_;
    mutable std::mutex mutex_;
    std::weak_ptr<NotificationCenterDelegate> delegate_;
};

}  // namespace ovix::platform::desktop
