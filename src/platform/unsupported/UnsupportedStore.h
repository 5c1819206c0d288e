#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// A platform without a store: every call fails with an "unsupported" error, the entitlement
/// sequence is empty.
class UnsupportedStore : public Store {
  public:
    void products(const std::vector<std::string>&, std::function<void(ProductsResult)> completion) override {
        unsupported::later([completion = std::move(completion)] { completion(error()); });
    }
    void purchase(const StoreProduct&, std::function<void(PurchaseResult)> completion) override {
        unsupported::later([completion = std::move(completion)] { completion(error()); });
    }
    std::shared_ptr<EntitlementSequence> currentEntitlements() override {
        struct Empty : EntitlementSequence {
            void next(std::function<void(std::optional<VerificationResult>)> completion) override {
                unsupported::later([completion = std::move(completion)] { completion(std::nullopt); });
            }
        };
        unsupported::report("The store");
        return std::make_shared<Empty>();
    }
    void finish(const StoreTransaction&, std::function<void()> completion) override {
        unsupported::later(std::move(completion));
    }

  private:
    static StoreError error() {
        auto text = unsupported::message("The store");
        return StoreError{text, text};
    }
};

}  // namespace ovix::platform
