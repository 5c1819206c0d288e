#include "ovix/platform/SandboxStore.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "platform/sandbox/SandboxCatalog.h"
#include "platform/sandbox/SandboxQueue.h"

namespace ovix::platform {

namespace {

// Hands out a snapshot of the entitlements, one element per `next`, through the store's queue.
class SandboxEntitlements : public EntitlementSequence {
  public:
    SandboxEntitlements(std::vector<VerificationResult> elements, std::shared_ptr<SandboxQueue> queue,
                        double latency)
        : elements_(std::move(elements)), queue_(std::move(queue)), latency_(latency) {}

    void next(std::function<void(std::optional<VerificationResult>)> completion) override {
        std::optional<VerificationResult> element;
        {
            std::lock_guard lock(mutex_);
            if (position_ < elements_.size()) {
                element = elements_[position_++];
            }
        }
        queue_->post(latency_, [completion = std::move(completion), element = std::move(element)] {
            completion(element);
        });
    }

  private:
    std::mutex mutex_;
    std::vector<VerificationResult> elements_;
    std::size_t position_ = 0;
    std::shared_ptr<SandboxQueue> queue_;
    double latency_;
};

}  // namespace

// ---- construction and loading ----

SandboxStore::SandboxStore(Catalog catalog)
    : catalog_(std::move(catalog)), queue_(std::make_shared<SandboxQueue>()) {
    if (catalog_.firstTransactionId) {
        nextTransactionId_ = *catalog_.firstTransactionId;
    } else {
        for (const auto& entitlement : catalog_.entitlements) {
            nextTransactionId_ = std::max(nextTransactionId_, entitlement.transaction.id + 1);
        }
    }
}

SandboxStore::SandboxStore() : SandboxStore(Catalog{}) {}

SandboxStore::~SandboxStore() = default;

std::optional<SandboxStore::Catalog> SandboxStore::parseCatalog(std::string_view json, std::string* error) {
    return SandboxCatalog::parse(json, error);
}

std::optional<SandboxStore::Catalog> SandboxStore::loadCatalog(const std::filesystem::path& file,
                                                               std::string* error) {
    return SandboxCatalog::load(file, error);
}

std::shared_ptr<SandboxStore> SandboxStore::createConfigured(const Bundle& mainBundle, Console& console) {
    std::optional<std::filesystem::path> file;
    if (const char* named = std::getenv(std::string(kCatalogVariable).c_str()); named && *named) {
        file = named;
    } else {
        file = mainBundle.pathForResource(kCatalogResource, "");
    }
    if (!file) {
        return std::make_shared<SandboxStore>();
    }
    std::string error;
    auto catalog = loadCatalog(*file, &error);
    if (!catalog) {
        console.printLine("⚠️ Sandbox store: " + error);
        return std::make_shared<SandboxStore>();
    }
    return std::make_shared<SandboxStore>(std::move(*catalog));
}

StoreError SandboxStore::error(const std::string& text) {
    return StoreError{text, "SandboxStore.Error(\"" + text + "\")"};
}

// ---- the store ----

void SandboxStore::products(const std::vector<std::string>& identifiers,
                            std::function<void(ProductsResult)> completion) {
    ProductsResult result;
    double latency = 0;
    {
        std::lock_guard lock(mutex_);
        fetchRequests_.push_back(identifiers);
        latency = catalog_.latency;
        if (!nextFetchErrors_.empty()) {
            result = error(nextFetchErrors_.front());
            nextFetchErrors_.pop_front();
        } else if (catalog_.fetchError) {
            result = error(*catalog_.fetchError);
        } else {
            // Catalog order; a product listed twice in the catalog is answered twice.
            std::vector<StoreProduct> found;
            for (const auto& product : catalog_.products) {
                if (std::find(identifiers.begin(), identifiers.end(), product.id) != identifiers.end()) {
                    found.push_back(product);
                }
            }
            result = std::move(found);
        }
    }
    queue_->post(latency, [completion = std::move(completion), result = std::move(result)]() mutable {
        completion(std::move(result));
    });
}

SandboxStore::Outcome SandboxStore::nextOutcomeLocked(const std::string& productId) {
    if (!nextPurchases_.empty()) {
        auto outcome = std::move(nextPurchases_.front());
        nextPurchases_.pop_front();
        return outcome;
    }
    auto scripted = catalog_.outcomes.find(productId);
    return scripted == catalog_.outcomes.end() ? Outcome::success() : scripted->second;
}

void SandboxStore::purchase(const StoreProduct& product, std::function<void(PurchaseResult)> completion) {
    PurchaseResult result;
    double latency = 0;
    {
        std::lock_guard lock(mutex_);
        purchaseRequests_.push_back(product);
        latency = catalog_.latency;
        auto outcome = nextOutcomeLocked(product.id);
        switch (outcome.kind) {
            case Outcome::Kind::Success:
            case Outcome::Kind::Unverified: {
                auto now = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
                StoreTransaction transaction{product.id, nextTransactionId_++, now};
                auto verification = outcome.kind == Outcome::Kind::Success
                                        ? VerificationResult::verifiedTransaction(std::move(transaction))
                                        : VerificationResult::unverifiedTransaction(std::move(transaction),
                                                                                    error(outcome.errorText));
                if (!catalog_.consumables.contains(product.id)) {
                    catalog_.entitlements.push_back(verification);
                }
                result = PurchaseOutcome::success(std::move(verification));
                break;
            }
            case Outcome::Kind::UserCancelled:
                result = PurchaseOutcome::userCancelled();
                break;
            case Outcome::Kind::Pending:
                result = PurchaseOutcome::pending();
                break;
            case Outcome::Kind::Unknown:
                result = PurchaseOutcome::unknown();
                break;
            case Outcome::Kind::Failure:
                result = error(outcome.errorText);
                break;
        }
    }
    queue_->post(latency, [completion = std::move(completion), result = std::move(result)]() mutable {
        completion(std::move(result));
    });
}

std::shared_ptr<EntitlementSequence> SandboxStore::currentEntitlements() {
    std::lock_guard lock(mutex_);
    return std::make_shared<SandboxEntitlements>(catalog_.entitlements, queue_, catalog_.latency);
}

void SandboxStore::finish(const StoreTransaction& transaction, std::function<void()> completion) {
    double latency = 0;
    {
        std::lock_guard lock(mutex_);
        finished_.push_back(transaction.id);
        latency = catalog_.latency;
    }
    queue_->post(latency, std::move(completion));
}

// ---- scripting and records ----

void SandboxStore::setProducts(std::vector<StoreProduct> products) {
    std::lock_guard lock(mutex_);
    catalog_.products = std::move(products);
}

void SandboxStore::setOutcome(const std::string& productId, Outcome outcome) {
    std::lock_guard lock(mutex_);
    catalog_.outcomes[productId] = std::move(outcome);
}

void SandboxStore::scriptNextPurchase(Outcome outcome) {
    std::lock_guard lock(mutex_);
    nextPurchases_.push_back(std::move(outcome));
}

void SandboxStore::failNextFetch(std::string text) {
    std::lock_guard lock(mutex_);
    nextFetchErrors_.push_back(std::move(text));
}

void SandboxStore::setFetchError(std::optional<std::string> text) {
    std::lock_guard lock(mutex_);
    catalog_.fetchError = std::move(text);
}

void SandboxStore::setEntitlements(std::vector<VerificationResult> entitlements) {
    std::lock_guard lock(mutex_);
    catalog_.entitlements = std::move(entitlements);
}

void SandboxStore::setLatency(double seconds) {
    std::lock_guard lock(mutex_);
    catalog_.latency = std::max(0.0, seconds);
}

std::vector<std::uint64_t> SandboxStore::finishedTransactionIds() const {
    std::lock_guard lock(mutex_);
    return finished_;
}

std::vector<StoreProduct> SandboxStore::purchaseRequests() const {
    std::lock_guard lock(mutex_);
    return purchaseRequests_;
}

std::vector<std::vector<std::string>> SandboxStore::fetchRequests() const {
    std::lock_guard lock(mutex_);
    return fetchRequests_;
}

std::thread::id SandboxStore::callbackThread() const {
    return queue_->threadId();
}

}  // namespace ovix::platform
