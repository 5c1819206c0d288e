#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ovix/Value.h"

namespace ovix::platform {

/// A failure reported by the store.
struct StoreError {
    std::string localizedDescription;  ///< the human-readable text
    std::string description;           ///< the error's default text form (for console lines)
};

struct StoreProduct {
    std::string id;
    std::string displayPrice;  ///< localised price text, currency sign included
};

struct StoreTransaction {
    std::string productID;
    std::uint64_t id = 0;
    Date purchaseDate;
};

/// A transaction as the store vouches for it: verified, or unverified with the verification error.
struct VerificationResult {
    StoreTransaction transaction;
    std::optional<StoreError> verificationError;  ///< set when unverified
    bool verified() const { return !verificationError.has_value(); }
};

/// What a purchase ended in, when the call itself did not fail.
struct PurchaseOutcome {
    enum class Kind { Success, UserCancelled, Pending, Unknown };
    Kind kind = Kind::Unknown;
    std::optional<VerificationResult> verification;  ///< set for Success
};

/// The current entitlements, read one element at a time.
/// Threading: `next` may be called again only after its previous completion ran; completions arrive
/// on any thread. `nullopt` marks the end of the sequence.
class EntitlementSequence {
public:
    virtual ~EntitlementSequence() = default;
    virtual void next(std::function<void(std::optional<VerificationResult>)> completion) = 0;
};

/// The platform store.
///
/// Threading: calls from any thread; completions arrive on the store's own thread (never inline).
/// A platform without a store fails every call with an "unsupported" error.
class Store {
public:
    using ProductsResult = std::variant<std::vector<StoreProduct>, StoreError>;
    using PurchaseResult = std::variant<PurchaseOutcome, StoreError>;

    virtual ~Store() = default;
    virtual void products(const std::vector<std::string>& identifiers,
                          std::function<void(ProductsResult)> completion) = 0;
    /// Buys with an empty option set.
    virtual void purchase(const StoreProduct& product, std::function<void(PurchaseResult)> completion) = 0;
    virtual std::shared_ptr<EntitlementSequence> currentEntitlements() = 0;
    /// Tells the store the transaction has been delivered.
    virtual void finish(const StoreTransaction& transaction, std::function<void()> completion) = 0;
};

}  // namespace ovix::platform
