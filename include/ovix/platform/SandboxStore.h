#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "ovix/platform/Console.h"
#include "ovix/platform/ResourceBundle.h"
#include "ovix/platform/Store.h"

namespace ovix::platform {

class SandboxQueue;

/// A store that lives in the process: a product catalog, scripted purchase outcomes, an entitlement
/// list and a record of what was asked of it. Games use it in their tests, and desktop builds (which
/// have no platform store) use it in place of one.
///
/// Threading: every member may be called from any thread. Completions run on the store's own
/// delivery thread, never inline, in the order the calls were made, each `latency` seconds (real
/// time) after its call. What a call answers is decided when it is made: scripting the store later
/// does not change an answer already on its way. Destroying the store delivers what is still on its
/// way at once.
class SandboxStore : public Store {
  public:
    /// What a purchase ends in.
    struct Outcome {
        enum class Kind { Success, UserCancelled, Pending, Unknown, Unverified, Failure };
        Kind kind = Kind::Success;
        std::string errorText;  ///< the error's text, for Unverified and Failure

        static Outcome success() { return {Kind::Success, {}}; }
        static Outcome userCancelled() { return {Kind::UserCancelled, {}}; }
        static Outcome pending() { return {Kind::Pending, {}}; }
        /// An outcome this SDK does not know (a newer store's).
        static Outcome unknown() { return {Kind::Unknown, {}}; }
        /// A successful purchase whose transaction fails verification with `text`.
        static Outcome unverified(std::string text) { return {Kind::Unverified, std::move(text)}; }
        /// The purchase call itself fails with `text`.
        static Outcome failure(std::string text) { return {Kind::Failure, std::move(text)}; }
    };

    /// Everything a catalog file states (see the README for its JSON form).
    struct Catalog {
        std::vector<StoreProduct> products;
        /// Product identifiers whose purchases never join the entitlements.
        std::set<std::string> consumables;
        /// The outcome of every purchase of a product; products not listed succeed.
        std::map<std::string, Outcome> outcomes;
        std::vector<VerificationResult> entitlements;
        /// When set, every fetch fails with this text.
        std::optional<std::string> fetchError;
        /// Seconds between a call and its completion.
        double latency = 0;
        /// The identifier of the first transaction a purchase creates; by default one more than the
        /// largest entitlement's.
        std::optional<std::uint64_t> firstTransactionId;
    };

    /// The environment variable naming the desktop store's catalog file.
    static constexpr std::string_view kCatalogVariable = "OVIX_SANDBOX_CATALOG";
    /// The catalog file looked for in the game's own resources when the variable is not set.
    static constexpr std::string_view kCatalogResource = "sandbox-store.json";

    /// An empty catalog: no products, every purchase succeeds, no entitlements.
    SandboxStore();
    explicit SandboxStore(Catalog catalog);
    ~SandboxStore() override;
    SandboxStore(const SandboxStore&) = delete;
    SandboxStore& operator=(const SandboxStore&) = delete;

    /// Reads a catalog from JSON text; nullopt with `*error` set (when given) if the text is not one.
    static std::optional<Catalog> parseCatalog(std::string_view json, std::string* error = nullptr);
    /// Reads a catalog file; nullopt with `*error` set (when given) if it cannot be read or parsed.
    static std::optional<Catalog> loadCatalog(const std::filesystem::path& file,
                                              std::string* error = nullptr);
    /// The desktop store: the catalog file named by `OVIX_SANDBOX_CATALOG`, else "sandbox-store.json"
    /// in `mainBundle`, else an empty catalog. A file that cannot be loaded leaves the catalog empty
    /// and prints one "⚠️ Sandbox store: ..." line on `console`.
    static std::shared_ptr<SandboxStore> createConfigured(const Bundle& mainBundle, Console& console);

    /// The error this store reports for `text`: `text` as the localised description, a
    /// "SandboxStore.Error(...)" form as the default text.
    static StoreError error(const std::string& text);

    // Store
    void products(const std::vector<std::string>& identifiers,
                  std::function<void(ProductsResult)> completion) override;
    void purchase(const StoreProduct& product, std::function<void(PurchaseResult)> completion) override;
    std::shared_ptr<EntitlementSequence> currentEntitlements() override;
    void finish(const StoreTransaction& transaction, std::function<void()> completion) override;

    // Scripting
    void setProducts(std::vector<StoreProduct> products);
    /// Every later purchase of `productId` ends in `outcome` (unless a next-call script says otherwise).
    void setOutcome(const std::string& productId, Outcome outcome);
    /// The next purchase call, whatever its product, ends in `outcome`; queued in call order.
    void scriptNextPurchase(Outcome outcome);
    /// The next fetch fails with `text`; queued in call order.
    void failNextFetch(std::string text);
    /// Every fetch fails with `text` (nullopt: fetches answer from the catalog again).
    void setFetchError(std::optional<std::string> text);
    void setEntitlements(std::vector<VerificationResult> entitlements);
    void setLatency(double seconds);

    // What was asked of it
    /// Identifiers of every transaction finished so far, in finishing order.
    std::vector<std::uint64_t> finishedTransactionIds() const;
    /// The product of every purchase call, in call order.
    std::vector<StoreProduct> purchaseRequests() const;
    /// The identifier list of every fetch, in call order.
    std::vector<std::vector<std::string>> fetchRequests() const;
    /// The thread completions run on.
    std::thread::id callbackThread() const;

  private:
    Outcome nextOutcomeLocked(const std::string& productId);

    mutable std::mutex mutex_;
    Catalog catalog_;
    std::deque<Outcome> nextPurchases_;
    std::deque<std::string> nextFetchErrors_;
    std::uint64_t nextTransactionId_ = 1;
    std::vector<std::uint64_t> finished_;
    std::vector<StoreProduct> purchaseRequests_;
    std::vector<std::vector<std::string>> fetchRequests_;
    std::shared_ptr<SandboxQueue> queue_;
};

}  // namespace ovix::platform
