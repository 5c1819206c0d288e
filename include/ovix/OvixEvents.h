#pragma once

#include <string_view>

namespace ovix {

/// The public event names a game receives through `OvixSdkListener::onEventReceived`.
///
/// The values are part of the public contract. `AD_FAILED`, `AD_CLOSED` and `PURCHASES_RESTORED` do
/// not follow the pattern of the others on purpose; games already match on these exact strings.
/// `AD_LOADED`, `AD_FAILED`, `AD_CLOSED`, `REWARD_EARNED`, `BILLING_DISCONNECTED`,
/// `PURCHASE_CONSUMED` and `PURCHASE_ACKNOWLEDGED` are reserved for the game's own integrations:
/// nothing in the SDK raises them.
struct OvixEvents {
    OvixEvents() = delete;

    static constexpr std::string_view LOGIN_SUCCESS = "OvixLoginSuccess";
    static constexpr std::string_view LOGOUT_SUCCESS = "OvixLogoutSuccess";
    static constexpr std::string_view AD_LOADED = "OvixAdLoaded";
    static constexpr std::string_view AD_FAILED = "OvixFailed";
    static constexpr std::string_view AD_CLOSED = "OvixClosed";
    static constexpr std::string_view REWARD_EARNED = "OvixRewardEarned";
    static constexpr std::string_view PURCHASE_UPDATED = "OvixPurchaseUpdated";
    static constexpr std::string_view BILLING_ERROR = "OvixBillingError";
    static constexpr std::string_view BILLING_CONNECTED = "OvixBillingConnected";
    static constexpr std::string_view BILLING_DISCONNECTED = "OvixBillingDisconnected";
    static constexpr std::string_view PURCHASE_CONSUMED = "OvixPurchaseConsumed";
    static constexpr std::string_view PURCHASE_ACKNOWLEDGED = "OvixPurchaseAcknowledged";
    static constexpr std::string_view PURCHASES_RESTORED = "OvixPurchaseRestored";
};

}  // namespace ovix
