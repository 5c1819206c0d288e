#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ovix/Value.h"

namespace ovix::platform {

/// A failure reported by the store.
struct StoreError {
    std::string localizedDescription;  ///< the human-readable text, as a player would read it
    std::string description;           ///< the error's default text form (for console lines)
};

/// A product record as the store describes it.
struct StoreProduct {
    std::string id;
    std::string displayPrice;  ///< localised price text, currency sign included

    friend bool operator==(const StoreProduct&, const StoreProduct&) = default;
};

/// One purchase of a product, as the store records it.
struct StoreTransaction {
    std::string productID;
    std::uint64_t id = 0;  ///< the store's identifier of this transaction
    Date purchaseDate;

    friend bool operator==(const StoreTransaction&, const StoreTransaction&) = default;
};

/// A transaction as the store vouches for it: verified, or unverified with the verification error.
struct VerificationResult {
    StoreTransaction transaction;
    std::optional<StoreError> verificationError;  ///< set when unverified

    static VerificationResult verifiedTransaction(StoreTransaction transaction) {
        return {std::move(transaction), {}};
    }
    static VerificationResult unverifiedTransaction(StoreTransaction transaction, StoreError error) {
        return {std::move(transaction), std::move(error)};
    }
    bool verified() const { return !verificationError.has_value(); }
};

/// What a purchase ended in, when the call itself did not fail. `Unknown` stands for any outcome a
/// newer store may add; callers must tolerate it.
struct PurchaseOutcome {
    enum class Kind { Success, UserCancelled, Pending, Unknown };
    Kind kind = Kind::Unknown;
    std::optional<VerificationResult> verification;  ///< set exactly when `kind` is Success

    static PurchaseOutcome success(VerificationResult verification) {
        return {Kind::Success, std::move(verification)};
    }
    static PurchaseOutcome userCancelled() { return {Kind::UserCancelled, {}}; }
    static PurchaseOutcome pending() { return {Kind::Pending, {}}; }
    static PurchaseOutcome unknown() { return {Kind::Unknown, {}}; }
};

/// The current entitlements, read one element at a time, in the store's order.
///
/// Threading: `next` may be called again only after its previous completion ran; each completion
/// runs exactly once, on any thread, never inline in the call. `nullopt` marks the end of the
/// sequence, and every later `next` answers `nullopt` too. The sequence keeps what it needs alive.
class EntitlementSequence {
  public:
    virtual ~EntitlementSequence() = default;
    virtual void next(std::function<void(std::optional<VerificationResult>)> completion) = 0;
};

/// The platform store: products by identifier, purchase, verification, current entitlements, finish.
///
/// Threading: calls from any thread; every completion runs exactly once, on the store's own thread,
/// never inline in the call. A platform without a store fails every call with an "unsupported"
/// error and has no entitlements.
class Store {
  public:
    /// The products the store knows among the identifiers (possibly none), or why it could not answer.
    using ProductsResult = std::variant<std::vector<StoreProduct>, StoreError>;
    /// How the purchase ended, or why the purchase call itself failed.
    using PurchaseResult = std::variant<PurchaseOutcome, StoreError>;

    virtual ~Store() = default;
    virtual void products(const std::vector<std::string>& identifiers,
                          std::function<void(ProductsResult)> completion) = 0;
    /// Buys with an empty option set (no account token, no quantity).
    virtual void purchase(const StoreProduct& product, std::function<void(PurchaseResult)> completion) = 0;
    /// A fresh sequence over the transactions that entitle the user now.
    virtual std::shared_ptr<EntitlementSequence> currentEntitlements() = 0;
    /// Tells the store the transaction has been delivered; `completion` runs once the store took note.
    virtual void finish(const StoreTransaction& transaction, std::function<void()> completion) = 0;
};

}  // namespace ovix::platform
