#include "purchases/IAPManager.h"

#include <utility>
#include <variant>

#include "core/EventSlot.h"
#include "ovix/OvixEvents.h"

namespace ovix {

namespace {

Value transactionPayload(const platform::StoreTransaction& transaction) {
    return Dictionary{{"productId", Value(transaction.productID)},
                      {"transactionId", Value(transaction.id)},
                      {"date", Value(transaction.purchaseDate)}};
}

// A future for an operation that reports its end through a `Done`.
template <typename Start>
std::future<void> futureOf(Start start) {
    auto promise = std::make_shared<std::promise<void>>();
    auto future = promise->get_future();  // before the store's thread may set it
    start([promise] { promise->set_value(); });
    return future;
}

}  // namespace

IAPManager& IAPManager::shared() {
    static IAPManager instance;
    return instance;
}

std::vector<platform::StoreProduct> IAPManager::products() const {
    std::lock_guard lock(mutex_);
    return products_;
}

void IAPManager::raiseBillingError(const std::string& text) {
    EventSlot::shared().raise(OvixEvents::BILLING_ERROR, Value(text));
}

std::future<void> IAPManager::fetchProducts(std::vector<std::string> productIds) {
    return futureOf([this, &productIds](Done done) {
        auto services = platform::current();
        services->store->products(
            productIds, [this, services, done = std::move(done)](platform::Store::ProductsResult result) {
                fetched(*services, std::move(result));
                done();
            });
    });
}

void IAPManager::fetched(const platform::Platform& services, platform::Store::ProductsResult result) {
    if (auto* error = std::get_if<platform::StoreError>(&result)) {
        services.console->printLine("❌ Failed to fetch products: " + error->description);
        raiseBillingError(error->localizedDescription);
        return;
    }
    auto& fetched = std::get<std::vector<platform::StoreProduct>>(result);
    Array payload;
    payload.reserve(fetched.size());
    for (const auto& product : fetched) {
        payload.emplace_back(Dictionary{{"id", Value(product.id)}, {"price", Value(product.displayPrice)}});
    }
    {
        std::lock_guard lock(mutex_);
        products_ = std::move(fetched);
    }
    EventSlot::shared().raise(OvixEvents::BILLING_CONNECTED, Value(std::move(payload)));
}

std::future<void> IAPManager::purchase(std::string productId) {
    return futureOf([this, &productId](Done done) { purchase(std::move(productId), std::move(done)); });
}

void IAPManager::purchase(std::string productId, Done done) {
    std::optional<platform::StoreProduct> product;
    {
        std::lock_guard lock(mutex_);
        for (const auto& candidate : products_) {
            if (candidate.id == productId) {
                product = candidate;
                break;
            }
        }
    }
    if (!product) {
        raiseBillingError("Product not found");
        done();
        return;
    }
    auto services = platform::current();
    services->store->purchase(*product,
                              [services, done = std::move(done)](platform::Store::PurchaseResult result) {
                                  purchased(services, std::move(result), done);
                              });
}

void IAPManager::purchased(const std::shared_ptr<platform::Platform>& services,
                           platform::Store::PurchaseResult result, const Done& done) {
    using Kind = platform::PurchaseOutcome::Kind;
    if (auto* error = std::get_if<platform::StoreError>(&result)) {
        services->console->printLine("❌ Purchase failed: " + error->localizedDescription);
        raiseBillingError(error->localizedDescription);
        done();
        return;
    }
    const auto& outcome = std::get<platform::PurchaseOutcome>(result);
    switch (outcome.kind) {
        case Kind::Success: {
            if (!outcome.verification) {
                break;  // a store that breaks its contract: nothing to deliver
            }
            const auto& verification = *outcome.verification;
            if (verification.verified()) {
                handleVerifiedTransaction(services, verification.transaction, false, done);
                return;
            }
            const auto& text = verification.verificationError->localizedDescription;
            services->console->printLine("⚠️ Unverified purchase: " + text);
            raiseBillingError(text);
            break;
        }
        case Kind::UserCancelled:
            raiseBillingError("User canceled");
            break;
        case Kind::Pending:
            raiseBillingError("Purchase pending");
            break;
        case Kind::Unknown:
            break;
    }
    done();
}

std::future<void> IAPManager::restorePurchases() {
    return futureOf([](Done done) {
        auto services = platform::current();
        restoreNext(services, services->store->currentEntitlements(), done);
    });
}

void IAPManager::restoreNext(const std::shared_ptr<platform::Platform>& services,
                             const std::shared_ptr<platform::EntitlementSequence>& sequence,
                             const Done& done) {
    sequence->next([services, sequence, done](std::optional<platform::VerificationResult> element) {
        if (!element) {
            done();
            return;
        }
        if (element->verified()) {
            handleVerifiedTransaction(services, element->transaction, true,
                                      [services, sequence, done] { restoreNext(services, sequence, done); });
            return;
        }
        const auto& text = element->verificationError->localizedDescription;
        services->console->printLine("⚠️ Unverified restore: " + text);
        raiseBillingError(text);
        restoreNext(services, sequence, done);
    });
}

void IAPManager::handleVerifiedTransaction(const std::shared_ptr<platform::Platform>& services,
                                           const platform::StoreTransaction& transaction, bool isRestore,
                                           std::function<void()> then) {
    EventSlot::shared().raise(isRestore ? OvixEvents::PURCHASES_RESTORED : OvixEvents::PURCHASE_UPDATED,
                              transactionPayload(transaction));
    // Only after the listener had it: a crash in between means the store offers it again.
    services->store->finish(transaction, std::move(then));
}

}  // namespace ovix
