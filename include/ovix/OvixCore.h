#pragma once

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/FloatingButton.h"
#include "ovix/NewsItem.h"
#include "ovix/OvixEvents.h"
#include "ovix/OvixSdkListener.h"
#include "ovix/Value.h"
#include "ovix/kit/Geometry.h"
#include "ovix/platform/ImageCodec.h"

namespace ovix {

class WarningButton;

/// The one object a game talks to.
///
/// `OvixCore::shared()` is created on first use (thread-safe) and lives for the process. The backend
/// addresses are copied from the installed platform's environment at that moment: install a platform
/// (or choose an emulator) before the first call.
///
/// Threading: UI operations must be called on the main thread. No operation throws; failures arrive
/// as nil results, `BILLING_ERROR` events, alerts or console lines.
class OvixCore {
  public:
    static OvixCore& shared();

    OvixCore(const OvixCore&) = delete;
    OvixCore& operator=(const OvixCore&) = delete;

    /// Base address of the accounts host (login page, user info, eligibility), no trailing slash.
    const std::string& urlString() const;
    /// Base address of the graph host (news feed, image upload), no trailing slash.
    const std::string& urlGraph() const;
    /// The push topic's base name, "games-dev".
    const std::string& topicFirebase() const;
    /// The game's listener, or null when none is set or the game has released it.
    std::shared_ptr<OvixSdkListener> listener() const;

    /// Stores `clientId` as given (empty included) and runs the push manager's set-up. The other
    /// three arguments are accepted and ignored. May be called again: the id is overwritten and the
    /// push set-up runs again.
    void initSdk(std::string_view clientId, std::string_view adjustToken, std::string_view environmentAdjust,
                 std::string_view admobID);
    /// Holds `listener` weakly, replacing any earlier one; keep it alive yourself. Null clears it.
    void setListener(std::shared_ptr<OvixSdkListener> listener);
    /// Clears the stored token, marks the session "logout" and raises `LOGOUT_SUCCESS` (null data).
    /// The overlay buttons stay; removing them is the game's call.
    void logout();
    /// The stored access token, or "" when none is stored.
    std::string getTokenApp() const;
    /// Asks for notification permission when the player has not decided yet, otherwise reports the
    /// decision. `callback` runs exactly once, always later on the main queue, with true when
    /// notifications are allowed (authorised or provisional).
    void requestNotificationPermission(std::function<void(bool)> callback);
    /// The signed-in player's profile: the object under "Data" of the user-info response, or nil for
    /// any failure (no token, transport, status outside 200-299, body, shape). Runs on the HTTP
    /// client's callback thread, not the main queue; with no stored token, at once on the calling
    /// thread, and nothing is sent.
    void getUserInfo(std::function<void(std::optional<Dictionary>)> completion);

    /// Buys a store product, in two calls on purpose. While the purchase manager has not loaded
    /// `productId`, a call only loads it (`BILLING_CONNECTED`, or `BILLING_ERROR`); call again once
    /// it has. Then the backend is asked whether the player may buy it: if so the purchase runs
    /// (`PURCHASE_UPDATED` or `BILLING_ERROR`); a refusal or a failed check raises nothing and posts
    /// the alert "Giao dịch thất bại" to the main queue, shown by the root controller of the first
    /// scene's first window (nothing is shown when there is none).
    /// Events arrive on the store's thread. The future is ready once all that was raised or posted;
    /// it never waits for the main queue, so the main thread may wait on it.
    std::future<void> purchaseProduct(std::string_view productId);
    /// Replays the current entitlements as `PURCHASES_RESTORED` events (`BILLING_ERROR` for one the
    /// store cannot verify), on the store's thread. Returns at once.
    void restorePurchases();

    /// Shows the start screen (`SplashViewController`) as the root of a new navigation controller in
    /// the application's first window, made key and visible. Nothing when there is no window.
    void showSplash();
    /// Shows the login screen (`LoginViewController`) the same way.
    void showLogin();

    /// Raises `event` through the one event mechanism: the listener, if set, gets it once, on the
    /// calling thread. Used by the SDK's own components; a game may raise its reserved events too.
    void raise(std::string_view event, const Value& data = Value()) const;

    // --- Floating button and the overlay's requests ---

    /// Puts a `size` x `size` floating button at (100, 200) on the key window (the first key window
    /// of the connected scenes, in scene then window order) and keeps it. Nothing when there is no
    /// key window, or when a button is already shown (a second call, whatever its size, keeps the
    /// first). Main thread.
    void showFloatingButton(double size);
    /// Removes the floating button from its superview and forgets it; nothing when none is shown. An
    /// open menu sheet stays in the window until it is closed through its own close action.
    /// Main thread.
    void hideFloatingButton();
    /// The floating button while shown; null otherwise.
    std::shared_ptr<FloatingButton> floatingButton() const;

    /// The news and events feed, in feed order, each element read with `NewsItem::fromDictionary`;
    /// nil for a failed request or a feed of another shape. The completion runs once on the HTTP
    /// client's callback thread (never the main queue), or at once on the calling thread when the
    /// feed's address cannot be built (nothing is sent then). Callable from any thread.
    void getAllNews(std::function<void(std::optional<std::vector<NewsItem>>)> completion);
    /// Uploads `picture` (JPEG, quality 0.8) as a support attachment; the completion gets the whole
    /// response object (the address is "ImageUrl" inside "Data") or nil. It runs once, on the HTTP
    /// client's callback thread, or at once on the calling thread when the picture cannot be encoded
    /// (nothing is sent then). Callable from any thread.
    void uploadImage(const platform::RgbaImage& picture,
                     std::function<void(std::optional<Dictionary>)> completion);

    // --- Warning button ---
    /// Puts the warning button on the key window (the connected scenes' windows in order, first one
    /// that is key; nothing when none is) with its frame at `origin`, 40 x 40, in the normal look.
    /// When one is already shown it is not added again: its frame moves to `origin` keeping its
    /// current size, then it returns to the normal look without animation (shrinking about the new
    /// centre if it was full). Main thread only.
    void showWarningButton(kit::Point origin);
    /// Removes the shown warning button from its superview and forgets it; a later show makes a new one.
    void hideWarningButton();
    /// The warning button while shown; null otherwise.
    std::shared_ptr<WarningButton> warningButton() const { return warningButton_; }

  private:
    OvixCore();

    // Floating button state (main thread only).
    std::shared_ptr<FloatingButton> floatingButton_;

    // Owned while shown; main thread only.
    std::shared_ptr<WarningButton> warningButton_;
};

}  // namespace ovix
