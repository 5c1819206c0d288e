#pragma once

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ovix/platform/Platform.h"
#include "ovix/platform/Store.h"

namespace ovix {

/// The one place the SDK talks to the store: fetches products, buys one, replays the current
/// entitlements. Every outcome reaches the game as an event through `OvixCore::raise`; nothing is
/// returned to the caller and nothing is thrown.
///
/// Threading: every operation may be called from any thread. Each works against the store of the
/// platform installed when it starts, and raises its events on the store's callback thread (or on
/// the caller's thread when no store call is made); it never hops to the main queue. The returned
/// future becomes ready once every event of the operation was raised and every transaction it
/// finishes was finished; discarding it does not wait. `products` is replaced only by a successful
/// fetch; a fetch racing a purchase is not ordered (the purchase sees either list).
class IAPManager {
  public:
    static IAPManager& shared();

    IAPManager(const IAPManager&) = delete;
    IAPManager& operator=(const IAPManager&) = delete;

    /// The products of the last successful fetch, in the store's order.
    std::vector<platform::StoreProduct> products() const;

    /// Asks the store for the products; raises `BILLING_CONNECTED` with [{"id", "price"}, ...] and
    /// replaces `products` (also when none came back), or prints the failure and raises
    /// `BILLING_ERROR` with its description, keeping `products`.
    std::future<void> fetchProducts(std::vector<std::string> productIds);
    /// Buys the first product in `products` with this identifier (exact match). A verified purchase
    /// raises `PURCHASE_UPDATED` with {"productId", "transactionId" (unsigned), "date" (Date)} and
    /// then finishes the transaction; every other ending raises `BILLING_ERROR` with a text, except an
    /// outcome this SDK does not know, which raises nothing.
    std::future<void> purchase(std::string productId);
    /// The same purchase, with `done` in place of the future: it runs once, where the future would
    /// become ready (on the store's callback thread, or at once on the calling thread when the
    /// product is not in `products`).
    void purchase(std::string productId, std::function<void()> done);
    /// Replays the current entitlements in the store's order: `PURCHASES_RESTORED` then finish for
    /// each verified one, a printed line and `BILLING_ERROR` for each unverified one. No summary.
    std::future<void> restorePurchases();

  private:
    IAPManager() = default;

    /// Runs once an operation raised its last event and its store calls were answered.
    using Done = std::function<void()>;

    void fetched(const platform::Platform& services, platform::Store::ProductsResult result);
    static void purchased(const std::shared_ptr<platform::Platform>& services,
                          platform::Store::PurchaseResult result, const Done& done);
    static void restoreNext(const std::shared_ptr<platform::Platform>& services,
                            const std::shared_ptr<platform::EntitlementSequence>& sequence, const Done& done);
    /// Raises the purchase event for a verified transaction, then finishes it; `then` runs once the
    /// store took note.
    static void handleVerifiedTransaction(const std::shared_ptr<platform::Platform>& services,
                                          const platform::StoreTransaction& transaction, bool isRestore,
                                          std::function<void()> then);
    static void raiseBillingError(const std::string& text);

    mutable std::mutex mutex_;  // guards products_ only; never held while calling out
    std::vector<platform::StoreProduct> products_;
};

}  // namespace ovix
