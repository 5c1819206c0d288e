#include "purchases/IAPManager.h"

#include <gtest/gtest.h>

#include "PurchaseTestSupport.h"

namespace ovix::test {
namespace {

using platform::SandboxStore;
using platform::StoreProduct;
using platform::StoreTransaction;
using platform::VerificationResult;

Date at(long long seconds) {
    return Date(std::chrono::seconds(seconds));
}

// A transaction payload holds exactly its three entries, with a number and a date, never text.
void expectTransactionMap(const Value& data, const StoreTransaction& transaction) {
    const auto* map = data.asObject();
    ASSERT_NE(map, nullptr) << data;
    EXPECT_EQ(map->size(), 3u) << data;
    EXPECT_EQ(data.stringAt("productId"), transaction.productID);
    ASSERT_NE(data.find("transactionId"), nullptr);
    EXPECT_EQ(data.find("transactionId")->kind(), Value::Kind::UInt);
    EXPECT_EQ(data.find("transactionId")->asUInt(), transaction.id);
    ASSERT_NE(data.find("date"), nullptr);
    EXPECT_EQ(data.find("date")->kind(), Value::Kind::Date);
    EXPECT_EQ(data.find("date")->asDate(), transaction.purchaseDate);
}

class IAPManagerTest : public PurchaseFixture {};

TEST_F(IAPManagerTest, FetchReplacesProductsAndReportsThemInOrderFromTheStoreThread) {
    store().setProducts({{"gems", "22.000 ₫"}, {"vip", "99.000 ₫"}, {"other", "1 ₫"}});
    await(IAPManager::shared().fetchProducts({"vip", "gems"}));

    EXPECT_EQ(IAPManager::shared().products(),
              (std::vector<StoreProduct>{{"gems", "22.000 ₫"}, {"vip", "99.000 ₫"}}));
    auto received = listener_->received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].event, "OvixBillingConnected");
    EXPECT_EQ(received[0].data, Value(Array{Dictionary{{"id", "gems"}, {"price", "22.000 ₫"}},
                                            Dictionary{{"id", "vip"}, {"price", "99.000 ₫"}}}));
    EXPECT_EQ(received[0].thread, store().callbackThread());
    EXPECT_NE(received[0].thread, std::this_thread::get_id());
    EXPECT_EQ(headless.mainQueue->pendingCount(), 0u);  // nothing went through the main queue
    EXPECT_TRUE(consoleLines().empty());
}

TEST_F(IAPManagerTest, AFailedFetchKeepsTheProductsAndAnEmptyAnswerEmptiesThem) {
    loadProducts({{"gems", "1 ₫"}, {"vip", "2 ₫"}});
    store().failNextFetch("Không có kết nối");
    await(IAPManager::shared().fetchProducts({"gems"}));
    EXPECT_EQ(IAPManager::shared().products(), (std::vector<StoreProduct>{{"gems", "1 ₫"}, {"vip", "2 ₫"}}));
    EXPECT_EQ(consoleLines(), std::vector<std::string>{
                                  "❌ Failed to fetch products: SandboxStore.Error(\"Không có kết nối\")"});

    await(IAPManager::shared().fetchProducts({"unknown"}));
    EXPECT_TRUE(IAPManager::shared().products().empty());
    EXPECT_EQ(listener_->names(), (std::vector<std::string>{"OvixBillingError", "OvixBillingConnected"}));
    EXPECT_EQ(listener_->received()[0].data, Value("Không có kết nối"));
    EXPECT_EQ(listener_->received()[1].data, Value(Array{}));
}

TEST_F(IAPManagerTest, OnlyAFetchedIdentifierIsBoughtAndOfTwoProductsWithItTheFirst) {
    loadProducts({{"gems", "1 ₫"}, {"gems", "2 ₫"}});
    ASSERT_EQ(IAPManager::shared().products().size(), 2u);
    await(IAPManager::shared().purchase("vip"));
    await(IAPManager::shared().purchase("GEMS"));  // identifiers compare exactly
    EXPECT_EQ(listener_->names(), (std::vector<std::string>{"OvixBillingError", "OvixBillingError"}));
    EXPECT_EQ(listener_->received()[1].data, Value("Product not found"));
    EXPECT_TRUE(store().purchaseRequests().empty());
    EXPECT_TRUE(consoleLines().empty());

    await(IAPManager::shared().purchase("gems"));
    EXPECT_EQ(store().purchaseRequests(), (std::vector<StoreProduct>{{"gems", "1 ₫"}}));
}

TEST_F(IAPManagerTest, AVerifiedPurchaseIsReportedThenFinishedListenedToOrNot) {
    loadProducts({{"gems", "1 ₫"}});
    std::vector<std::uint64_t> finishedWhenReported;
    listener_->onEvent = [&](const std::string&, const Value&) {
        finishedWhenReported = store().finishedTransactionIds();
    };
    await(IAPManager::shared().purchase("gems"));

    auto received = listener_->received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].event, "OvixPurchaseUpdated");
    EXPECT_EQ(received[0].thread, store().callbackThread());
    auto id = received[0].data.find("transactionId")->asUInt().value_or(0);
    auto date = received[0].data.find("date")->asDate().value_or(Date{});
    expectTransactionMap(received[0].data, {"gems", id, date});
    EXPECT_TRUE(finishedWhenReported.empty());
    EXPECT_EQ(store().finishedTransactionIds(), std::vector<std::uint64_t>{id});
    EXPECT_TRUE(consoleLines().empty());

    OvixCore::shared().setListener(nullptr);
    await(IAPManager::shared().purchase("gems"));
    EXPECT_EQ(store().finishedTransactionIds().size(), 2u) << "finished with no listener too";
}

TEST_F(IAPManagerTest, EveryUnsuccessfulEndingHasItsTextAndLineAndFinishesNothing) {
    struct Case {
        SandboxStore::Outcome outcome;
        std::vector<std::string> events;  // BILLING_ERROR payloads
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {SandboxStore::Outcome::failure("Thẻ bị từ chối"),
         {"Thẻ bị từ chối"},
         {"❌ Purchase failed: Thẻ bị từ chối"}},
        {SandboxStore::Outcome::unverified("Chữ ký sai"),
         {"Chữ ký sai"},
         {"⚠️ Unverified purchase: Chữ ký sai"}},
        {SandboxStore::Outcome::userCancelled(), {"User canceled"}, {}},
        {SandboxStore::Outcome::pending(), {"Purchase pending"}, {}},
        {SandboxStore::Outcome::unknown(), {}, {}},
    };
    loadProducts({{"gems", "1 ₫"}});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.events.empty() ? "unknown" : c.events[0]);
        listen();
        headless.console->clear();
        store().scriptNextPurchase(c.outcome);

        await(IAPManager::shared().purchase("gems"));
        std::vector<std::string> payloads;
        for (const auto& r : listener_->received()) {
            EXPECT_EQ(r.event, "OvixBillingError");
            payloads.push_back(r.data.asString() ? *r.data.asString() : "(not text)");
        }
        EXPECT_EQ(payloads, c.events);
        EXPECT_EQ(consoleLines(), c.lines);
    }
    EXPECT_TRUE(store().finishedTransactionIds().empty());
    EXPECT_EQ(store().purchaseRequests().size(), 5u);
}

TEST_F(IAPManagerTest, RestoreReplaysEntitlementsInOrderPastUnverifiedOnes) {
    await(IAPManager::shared().restorePurchases());
    EXPECT_TRUE(listener_->received().empty()) << "restoring nothing says nothing";
    const StoreTransaction first{"vip", 11, at(1000)}, second{"skin", 12, at(2000)},
        third{"pass", 13, at(3000)};
    store().setEntitlements(
        {VerificationResult::verifiedTransaction(first),
         VerificationResult::unverifiedTransaction(second, SandboxStore::error("Chữ ký sai")),
         VerificationResult::verifiedTransaction(third)});
    std::vector<std::vector<std::uint64_t>> finishedAtEachEvent;
    listener_->onEvent = [&](const std::string&, const Value&) {
        finishedAtEachEvent.push_back(store().finishedTransactionIds());
    };
    await(IAPManager::shared().restorePurchases());

    EXPECT_EQ(listener_->names(),
              (std::vector<std::string>{"OvixPurchaseRestored", "OvixBillingError", "OvixPurchaseRestored"}));
    auto received = listener_->received();
    ASSERT_EQ(received.size(), 3u);
    expectTransactionMap(received[0].data, first);
    EXPECT_EQ(received[1].data, Value("Chữ ký sai"));
    expectTransactionMap(received[2].data, third);
    for (const auto& r : received) {
        EXPECT_EQ(r.thread, store().callbackThread());
    }
    // Each event comes before its own finish and after the previous element's.
    EXPECT_EQ(finishedAtEachEvent, (std::vector<std::vector<std::uint64_t>>{{}, {11}, {11}}));
    EXPECT_EQ(store().finishedTransactionIds(), (std::vector<std::uint64_t>{11, 13}));
    EXPECT_EQ(consoleLines(), std::vector<std::string>{"⚠️ Unverified restore: Chữ ký sai"});
}

}  // namespace
}  // namespace ovix::test
