#pragma once

#include <functional>

namespace ovix {

/// The player's answer to notifications, asked for only while undecided.
class NotificationPermission {
  public:
    /// Asks for alert, sound and badge permission when the player has not decided yet, otherwise
    /// reports the decision. `callback` runs exactly once, always later on the main queue, with true
    /// when notifications are allowed (authorised or provisional), whatever thread the notification
    /// centre answers on and however often.
    static void request(std::function<void(bool)> callback);
};

}  // namespace ovix
