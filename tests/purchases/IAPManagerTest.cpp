#include "purchases/IAPManager.h"

#include <gtest/gtest.h>

#include "PurchaseTestSupport.h"

namespace ovix::test {
namespace {

using platform::SandboxStore;
using platform::StoreProduct;
using platform::StoreTransaction;
using platform::VerificationResult;

// What the game receives for a transaction: exactly these entries, a number and a date, never text.
Value payload(const StoreTransaction& transaction) {
    return Dictionary{{"productId", Value(transaction.productID)},
                      {"transactionId", Value(transaction.id)},
                      {"date", Value(transaction.purchaseDate)}};
}

class IAPManagerTest : public PurchaseFixture {};

TEST_F(IAPManagerTest, AFetchReplacesTheProductsInStoreOrderOnlyWhenItSucceeds) {
    store().setProducts({{"gems", "22.000 ₫"}, {"vip", "99.000 ₫"}, {"other", "1 ₫"}});
    const std::vector<StoreProduct> fetched{{"gems", "22.000 ₫"}, {"vip", "99.000 ₫"}};
    await(IAPManager::shared().fetchProducts({"vip", "gems"}));
    EXPECT_EQ(IAPManager::shared().products(), fetched);
    store().failNextFetch("Không có kết nối");
    await(IAPManager::shared().fetchProducts({"gems"}));
    EXPECT_EQ(IAPManager::shared().products(), fetched);
    await(IAPManager::shared().fetchProducts({"unknown"}));
    EXPECT_TRUE(IAPManager::shared().products().empty());

    EXPECT_EQ(
        listener_->events(),
        (Events{{"OvixBillingConnected", Value(Array{Dictionary{{"id", "gems"}, {"price", "22.000 ₫"}},
                                                     Dictionary{{"id", "vip"}, {"price", "99.000 ₫"}}})},
                {"OvixBillingError", Value("Không có kết nối")},
                {"OvixBillingConnected", Value(Array{})}}));
    EXPECT_TRUE(allOnStoreThread());
    EXPECT_EQ(consoleLines(), std::vector<std::string>{
                                  "❌ Failed to fetch products: SandboxStore.Error(\"Không có kết nối\")"});
}

// Each ending of a purchase: its events (an error with its text), its console lines, and whether it
// finished a transaction. The transaction payload shows in the restore test.
TEST_F(IAPManagerTest, EveryPurchaseEndingHasItsEventsAndLinesAndOnlyAVerifiedOneFinishes) {
    using Outcome = SandboxStore::Outcome;
    struct Case {
        std::string product;
        Outcome outcome;
        std::vector<std::string> events;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"GEMS", Outcome::success(), {"OvixBillingError: Product not found"}, {}},  // ids compare exactly
        {"gems",
         Outcome::failure("Thẻ bị từ chối"),
         {"OvixBillingError: Thẻ bị từ chối"},
         {"❌ Purchase failed: Thẻ bị từ chối"}},
        {"gems",
         Outcome::unverified("Chữ ký sai"),
         {"OvixBillingError: Chữ ký sai"},
         {"⚠️ Unverified purchase: Chữ ký sai"}},
        {"gems", Outcome::userCancelled(), {"OvixBillingError: User canceled"}, {}},
        {"gems", Outcome::pending(), {"OvixBillingError: Purchase pending"}, {}},
        {"gems", Outcome::unknown(), {}, {}},
        {"gems", Outcome::success(), {"OvixPurchaseUpdated"}, {}},
    };
    store().setProducts({{"gems", "1 ₫"}, {"gems", "2 ₫"}});
    await(IAPManager::shared().fetchProducts({"gems"}));
    ASSERT_EQ(IAPManager::shared().products().size(), 2u);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.product + (c.events.empty() ? " unknown" : " " + c.events[0]));
        listen();
        headless.console->clear();
        store().setOutcome("gems", c.outcome);
        await(IAPManager::shared().purchase(c.product));
        std::vector<std::string> events;
        for (const auto& [name, data] : listener_->events()) {
            events.push_back(data.asString() ? name + ": " + *data.asString() : name);
        }
        EXPECT_EQ(events, c.events);
        EXPECT_EQ(consoleLines(), c.lines);
    }
    EXPECT_TRUE(allOnStoreThread());
    EXPECT_EQ(store().finishedTransactionIds().size(), 1u);
    EXPECT_EQ(store().purchaseRequests(), std::vector<StoreProduct>(6, {"gems", "1 ₫"}))
        << "the first of the two products with the identifier";

    OvixCore::shared().setListener(nullptr);
    await(IAPManager::shared().purchase("gems"));
    EXPECT_EQ(store().finishedTransactionIds().size(), 2u) << "finished with no listener too";
}

TEST_F(IAPManagerTest, RestoreReplaysEntitlementsInOrderPastUnverifiedOnes) {
    await(IAPManager::shared().restorePurchases());
    EXPECT_TRUE(listener_->received().empty()) << "restoring nothing says nothing";
    const StoreTransaction first{"vip", 11, Date(std::chrono::seconds(1000))};
    const StoreTransaction third{"pass", 13, Date(std::chrono::seconds(3000))};
    store().setEntitlements(
        {VerificationResult::verifiedTransaction(first),
         VerificationResult::unverifiedTransaction({"skin", 12, Date{}}, SandboxStore::error("Chữ ký sai")),
         VerificationResult::verifiedTransaction(third)});
    std::vector<std::vector<std::uint64_t>> finishedAtEachEvent;
    listener_->onEvent = [&](const std::string&, const Value&) {
        finishedAtEachEvent.push_back(store().finishedTransactionIds());
    };
    await(IAPManager::shared().restorePurchases());

    EXPECT_EQ(listener_->events(), (Events{{"OvixPurchaseRestored", payload(first)},
                                           {"OvixBillingError", Value("Chữ ký sai")},
                                           {"OvixPurchaseRestored", payload(third)}}));
    EXPECT_TRUE(allOnStoreThread());
    // Each event comes before its own finish and after the previous element's.
    EXPECT_EQ(finishedAtEachEvent, (std::vector<std::vector<std::uint64_t>>{{}, {11}, {11}}));
    EXPECT_EQ(store().finishedTransactionIds(), (std::vector<std::uint64_t>{11, 13}));
    EXPECT_EQ(consoleLines(), std::vector<std::string>{"⚠️ Unverified restore: Chữ ký sai"});
}

}  // namespace
}  // namespace ovix::test
