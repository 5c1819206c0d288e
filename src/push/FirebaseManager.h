#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "ovix/Value.h"
#include "ovix/platform/NotificationCenter.h"
#include "ovix/platform/PushClient.h"

namespace ovix {

/// The push-messaging manager: configures the push client from its options file, asks for
/// notification permission, subscribes the topic on every registration token and decides how a
/// notification is shown while the game is in the foreground. Raises no events to the listener.
///
/// One instance for the process (`shared()`), created on first use. It is the push client's and the
/// notification centre's delegate; both hold it weakly. Every operation uses the platform installed at
/// the time of the call. Delegate callbacks may arrive on any thread; registering for remote
/// notifications and opening a URL are posted to the main queue.
class FirebaseManager : public platform::PushClientDelegate,
                        public platform::NotificationCenterDelegate,
                        public std::enable_shared_from_this<FirebaseManager> {
  public:
    static FirebaseManager& shared();

    FirebaseManager(const FirebaseManager&) = delete;
    FirebaseManager& operator=(const FirebaseManager&) = delete;

    /// Sets everything up; run by every `initSdk`. When the push client already has a default app it
    /// only prints "⚠️ Firebase already configured". Otherwise it configures the client from
    /// "GoogleService-Info.plist" in the host application's resources, else in the SDK's own (its code
    /// directory, then its resource bundle), printing which one was used or that neither had a usable
    /// file; then, in every case, installs itself as both delegates and requests authorisation for
    /// alert, sound and badge. A granted request registers for remote notifications on the main queue.
    void configure();

    /// The last registration token received, if any.
    std::optional<std::string> fcmTokenCache() const;
    /// Declared for parity with the push client's device-token flow; always false.
    bool apnsTokenReady() const { return apnsTokenReady_; }

    /// A token arrived (first or refresh): cache it, print it, subscribe the topic again. An absent
    /// token does nothing.
    void didReceiveRegistrationToken(const std::optional<std::string>& token) override;
    /// Logs the notification's data, opens its "url" on the main queue when it is a valid URL, then
    /// answers banner, sound and badge.
    void willPresent(const Dictionary& userInfo, std::function<void(unsigned options)> completion) override;
    /// A tapped notification only completes: it opens nothing.
    void didReceive(const Dictionary& userInfo, std::function<void()> completion) override;

    /// The topic name: the facade's topic base, "-", the stored client id ("" when none is stored, so
    /// the name then ends in the hyphen).
    static std::string topicName();
    /// Whether `text` is a URL that can be handed to the system: an absolute URI as RFC 3986 writes
    /// it, that is a scheme (a letter, then letters, digits, "+", "-" or ".") followed by ":" and at
    /// least one more character, all of them from the URI alphabet (letters, digits and
    /// -._~:/?#[]@!$&'()*+,;=), with "%" only before two hexadecimal digits. So no spaces, no
    /// double quotes, no angle brackets, no non-ASCII text. A relative reference such as
    /// "example.com/path" is not one: nothing could open it.
    static bool isValidUrl(std::string_view text);

  private:
    FirebaseManager() = default;

    void subscribeToTopic();
    void handleNotificationData(const Dictionary& userInfo);

    mutable std::mutex tokenMutex_;  // guards the cache only; never held while calling out
    std::optional<std::string> fcmTokenCache_;
    const bool apnsTokenReady_ = false;
};

}  // namespace ovix
