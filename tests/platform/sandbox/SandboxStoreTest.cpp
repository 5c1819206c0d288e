#include "ovix/platform/SandboxStore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>

#include "ovix/testing/CapturingConsole.h"

namespace ovix::platform {
namespace {

using namespace std::chrono_literals;
using Outcome = SandboxStore::Outcome;
using Texts = std::vector<std::string>;

// Starts an operation and waits for the value its completion hands over on the store's thread; the
// bound only guards against a hang.
template <typename T>
T await(const std::function<void(std::function<void(T)>)>& start) {
    std::promise<T> promise;
    auto future = promise.get_future();
    start([&promise](T value) { promise.set_value(std::move(value)); });
    EXPECT_EQ(future.wait_for(10s), std::future_status::ready);
    return future.get();
}

// "<product>#<transaction> ok", or the verification error in place of "ok".
std::string text(const VerificationResult& v) {
    return v.transaction.productID + "#" + std::to_string(v.transaction.id) + " " +
           (v.verified() ? "ok" : v.verificationError->localizedDescription);
}

// A fetch's product identifiers, or "error: <text>".
Texts fetch(Store& store, std::vector<std::string> ids) {
    auto result = await<Store::ProductsResult>([&](auto done) { store.products(ids, done); });
    if (const auto* error = std::get_if<StoreError>(&result)) {
        return {"error: " + error->localizedDescription};
    }
    Texts out;
    for (const auto& product : std::get<std::vector<StoreProduct>>(result)) {
        out.push_back(product.id);
    }
    return out;
}

PurchaseOutcome buy(Store& store, const std::string& id) {
    auto result = await<Store::PurchaseResult>([&](auto done) { store.purchase({id, ""}, done); });
    auto* outcome = std::get_if<PurchaseOutcome>(&result);
    return outcome != nullptr ? *outcome : PurchaseOutcome{};
}

Texts drain(EntitlementSequence& sequence) {
    Texts out;
    while (auto element = await<std::optional<VerificationResult>>([&](auto done) { sequence.next(done); })) {
        out.push_back(text(*element));
    }
    return out;
}

Date at(long long seconds) {
    return Date(std::chrono::seconds(seconds));
}

SandboxStore::Catalog catalogWith(std::vector<StoreProduct> products) {
    SandboxStore::Catalog catalog;
    catalog.products = std::move(products);
    return catalog;
}

TEST(SandboxCatalog, ReadsEveryPartOfTheFileFormat) {
    std::string error;
    auto catalog = SandboxStore::parseCatalog(R"({
      "products": [{"id": "gems_100", "displayPrice": "22.000 ₫", "consumable": true},
                   {"id": "vip_month", "displayPrice": "99.000 ₫"}],
      "outcomes": {"vip_month": "cancelled", "gems_100": {"outcome": "failure", "error": "Không thể kết nối"}},
      "entitlements": [
        {"productId": "vip_month", "transactionId": 41, "purchaseDate": "2024-05-01T10:00:00Z"},
        {"productId": "skin_red", "transactionId": 42, "purchaseDate": 1714557600.5, "unverified": "bad signature"}],
      "fetchError": "offline", "latency": 0.25, "firstTransactionId": 9000})",
                                              &error);
    ASSERT_TRUE(catalog) << error;
    EXPECT_EQ(catalog->products,
              (std::vector<StoreProduct>{{"gems_100", "22.000 ₫"}, {"vip_month", "99.000 ₫"}}));
    EXPECT_EQ(catalog->consumables, std::set<std::string>{"gems_100"});
    EXPECT_EQ(catalog->outcomes.at("vip_month").kind, Outcome::Kind::UserCancelled);
    EXPECT_EQ(catalog->outcomes.at("gems_100").kind, Outcome::Kind::Failure);
    EXPECT_EQ(catalog->outcomes.at("gems_100").errorText, "Không thể kết nối");
    ASSERT_EQ(catalog->entitlements.size(), 2u);
    EXPECT_EQ(text(catalog->entitlements[0]) + " / " + text(catalog->entitlements[1]),
              "vip_month#41 ok / skin_red#42 bad signature");
    EXPECT_EQ(catalog->entitlements[0].transaction.purchaseDate, at(1714557600));
    EXPECT_EQ(catalog->entitlements[1].transaction.purchaseDate, at(1714557600) + 500ms);
    EXPECT_EQ(std::tuple(catalog->fetchError, catalog->latency, catalog->firstTransactionId),
              std::tuple("offline", 0.25, 9000u));
}

TEST(SandboxCatalog, RejectsMistakesWithAMessageNamingThePlace) {
    const std::pair<std::string, std::string_view> cases[] = {
        {R"({"products": [)", "not JSON"},
        {R"([])", "the catalog must be an object"},
        {R"({})", "needs a \"products\" list"},
        {R"({"products": [{"id": "a"}]})", "products[0] needs a text \"displayPrice\""},
        {R"({"products": [], "entitlement": []})", "unknown key \"entitlement\""},
        {R"({"products": [], "outcomes": {"a": "refunded"}})", "outcome \"refunded\""},
        {R"({"products": [], "outcomes": {"a": "unverified"}})", "needs a text \"error\" for \"unverified\""},
        {R"({"products": [], "entitlements": [{"productId": "a", "transactionId": -1, "purchaseDate": 0}]})",
         "entitlements[0] needs a non-negative integer \"transactionId\""},
        {R"({"products": [], "entitlements": [{"productId": "a", "transactionId": 1,
             "purchaseDate": "2024-02-30T00:00:00Z"}]})",
         "\"purchaseDate\""},
        {R"({"products": [], "latency": -1})", "\"latency\""},
        // Dates a Date cannot hold (once an overflow that read as 1677).
        {R"({"products": [], "entitlements": [{"productId": "a", "transactionId": 1, "purchaseDate": 9.3e9}]})",
         "between the years 1678 and 2262"},
        {R"({"products": [], "entitlements": [{"productId": "a", "transactionId": 1,
             "purchaseDate": "4048-01-01T00:00:00Z"}]})",
         "between the years 1678 and 2262"},
        {R"({"products": [], "deep": )" + std::string(300, '[') + std::string(300, ']') + "}", "not JSON"},
    };
    for (const auto& [json, expected] : cases) {
        std::string error;
        EXPECT_FALSE(SandboxStore::parseCatalog(json, &error)) << json;
        EXPECT_NE(error.find(expected), std::string::npos) << json << "\n  gave: " << error;
    }
}

TEST(SandboxCatalog, TheNamedFileWinsOverTheBundlesAndOneThatCannotBeLoadedSaysWhy) {
    const auto dir =
        std::filesystem::temp_directory_path() /
        ("ovix-sandbox-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    std::filesystem::create_directories(dir / "bundle");
    ovix::testing::CapturingConsole console;
    auto configured = [&] {
        return fetch(*SandboxStore::createConfigured(Bundle(dir / "bundle"), console), {"a", "b"});
    };
    unsetenv("OVIX_SANDBOX_CATALOG");
    Texts found = configured();
    const auto bundled = dir / "bundle" / "sandbox-store.json";
    std::ofstream(bundled) << R"({"products": [{"id": "b"}]})";
    found.push_back(configured().empty() ? "none" : "some");
    std::ofstream(bundled) << R"({"products": [{"id": "b", "displayPrice": "2 ₫"}]})";
    found.push_back(configured().at(0));
    std::ofstream(dir / "named.json") << R"({"products": [{"id": "a", "displayPrice": "1 ₫"}]})";
    setenv("OVIX_SANDBOX_CATALOG", (dir / "named.json").c_str(), 1);
    found.push_back(configured().at(0));
    setenv("OVIX_SANDBOX_CATALOG", (dir / "missing.json").c_str(), 1);
    found.push_back(configured().empty() ? "none" : "some");
    unsetenv("OVIX_SANDBOX_CATALOG");
    std::filesystem::remove_all(dir);

    EXPECT_EQ(found, (Texts{"none", "b", "a", "none"}));
    EXPECT_EQ(
        console.lines(),
        (Texts{"⚠️ Sandbox store: " + bundled.string() + ": products[0] needs a text \"displayPrice\"",
               "⚠️ Sandbox store: cannot read " + (dir / "missing.json").string()}));
}

// Catalog order, duplicates and the delivery thread show in the purchase manager's tests.
TEST(SandboxStoreProducts, ScriptedFetchFailuresComeOnceOrUntilCleared) {
    SandboxStore store(catalogWith({{"a", "1"}}));
    store.failNextFetch("first");
    store.failNextFetch("second");
    Texts answers;
    auto next = [&] { answers.push_back(fetch(store, {"a"}).at(0)); };
    next(), next(), next();
    store.setFetchError("offline");
    next(), next();
    store.setFetchError(std::nullopt);
    next();
    EXPECT_EQ(answers,
              (Texts{"error: first", "error: second", "a", "error: offline", "error: offline", "a"}));
    EXPECT_EQ(store.fetchRequests(), std::vector<Texts>(6, Texts{"a"}));
}

TEST(SandboxStorePurchase, NextCallScriptsWinOverProductScriptsWhichOutliveThem) {
    SandboxStore store(catalogWith({{"a", "1"}, {"b", "2"}}));
    store.setOutcome("a", Outcome::pending());
    store.scriptNextPurchase(Outcome::failure("declined"));
    store.scriptNextPurchase(Outcome::unknown());

    auto failed = await<Store::PurchaseResult>([&](auto done) { store.purchase({"a", "1"}, done); });
    EXPECT_EQ(std::get<StoreError>(failed).localizedDescription, "declined");
    using Kind = PurchaseOutcome::Kind;
    std::vector<Kind> kinds;
    for (const char* id : {"b", "a", "a", "b"}) {
        kinds.push_back(buy(store, id).kind);
    }
    store.setOutcome("b", Outcome::userCancelled());
    kinds.push_back(buy(store, "b").kind);
    EXPECT_EQ(kinds, (std::vector<Kind>{Kind::Unknown, Kind::Pending, Kind::Pending, Kind::Success,
                                        Kind::UserCancelled}));
}

TEST(SandboxStorePurchase, SuccessesCreateNumberedTransactionsThatEntitleUnlessConsumable) {
    auto catalog = catalogWith({{"gems", "1"}, {"vip", "2"}, {"skin", "3"}});
    catalog.consumables = {"gems"};
    catalog.outcomes["skin"] = Outcome::unverified("tampered");
    catalog.entitlements = {VerificationResult::verifiedTransaction({"old", 70, at(100)})};
    SandboxStore store(std::move(catalog));
    const auto before = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
    Texts bought;
    for (const char* id : {"gems", "vip", "skin"}) {
        auto outcome = buy(store, id);
        ASSERT_EQ(outcome.kind, PurchaseOutcome::Kind::Success);
        ASSERT_TRUE(outcome.verification);
        EXPECT_GE(outcome.verification->transaction.purchaseDate, before);
        bought.push_back(text(*outcome.verification));
    }
    EXPECT_EQ(bought, (Texts{"gems#71 ok", "vip#72 ok", "skin#73 tampered"}));
    EXPECT_EQ(drain(*store.currentEntitlements()), (Texts{"old#70 ok", "vip#72 ok", "skin#73 tampered"}));
}

TEST(SandboxStoreEntitlements, ASequenceIsASnapshotThatStaysEnded) {
    SandboxStore store;
    store.setEntitlements({VerificationResult::verifiedTransaction({"a", 1, at(1)}),
                           VerificationResult::verifiedTransaction({"b", 2, at(2)})});
    auto sequence = store.currentEntitlements();
    store.setEntitlements({});
    EXPECT_EQ(drain(*sequence), (Texts{"a#1 ok", "b#2 ok"}));
    EXPECT_TRUE(drain(*sequence).empty());
    EXPECT_TRUE(drain(*store.currentEntitlements()).empty());
}

TEST(SandboxStoreDelivery, CompletionsRunInCallOrderAndDestructionDeliversWhatIsWaiting) {
    std::vector<int> order;
    {
        SandboxStore store(catalogWith({{"a", "1"}}));
        store.setLatency(3600);  // nothing would arrive within the test if destruction waited for it
        store.products({"a"}, [&](Store::ProductsResult) { order.push_back(1); });
        store.purchase({"a", "1"}, [&](Store::PurchaseResult) { order.push_back(2); });
        store.finish({"a", 1, at(0)}, [&] { order.push_back(3); });
    }
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(SandboxStoreDelivery, MayBeReleasedForTheLastTimeByItsOwnCompletion) {
    auto store = std::make_shared<SandboxStore>();
    std::promise<void> go;
    std::promise<void> released;
    // Hold the delivery thread until the test let go of the store, so the completion holds the last
    // reference.
    store->finish({"a", 1, at(0)}, [wait = go.get_future().share()] { wait.wait(); });
    store->finish({"a", 2, at(0)}, [keep = store, &released]() mutable {
        keep.reset();
        released.set_value();
    });
    store.reset();
    go.set_value();
    EXPECT_EQ(released.get_future().wait_for(10s), std::future_status::ready);
}

}  // namespace
}  // namespace ovix::platform
