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

Store::ProductsResult fetch(Store& store, std::vector<std::string> ids) {
    return await<Store::ProductsResult>([&](auto done) { store.products(ids, done); });
}

Store::PurchaseResult buy(Store& store, const StoreProduct& product) {
    return await<Store::PurchaseResult>([&](auto done) { store.purchase(product, done); });
}

std::vector<VerificationResult> drain(EntitlementSequence& sequence) {
    std::vector<VerificationResult> out;
    while (auto element = await<std::optional<VerificationResult>>([&](auto done) { sequence.next(done); })) {
        out.push_back(std::move(*element));
    }
    return out;
}

std::vector<std::string> ids(const Store::ProductsResult& result) {
    std::vector<std::string> out;
    for (const auto& product : std::get<std::vector<StoreProduct>>(result)) {
        out.push_back(product.id);
    }
    return out;
}

Date at(long long seconds) {
    return Date(std::chrono::seconds(seconds));
}

constexpr std::string_view kFullCatalog = R"({
  "products": [
    {"id": "gems_100", "displayPrice": "22.000 ₫", "consumable": true},
    {"id": "vip_month", "displayPrice": "99.000 ₫"}
  ],
  "outcomes": {
    "vip_month": "cancelled",
    "gems_100": {"outcome": "failure", "error": "Không thể kết nối"}
  },
  "entitlements": [
    {"productId": "vip_month", "transactionId": 41, "purchaseDate": "2024-05-01T10:00:00Z"},
    {"productId": "skin_red", "transactionId": 42, "purchaseDate": 1714557600.5, "unverified": "bad signature"}
  ],
  "fetchError": "offline",
  "latency": 0.25,
  "firstTransactionId": 9000
})";

TEST(SandboxCatalog, ReadsEveryPartOfTheFileFormat) {
    std::string error;
    auto catalog = SandboxStore::parseCatalog(kFullCatalog, &error);
    ASSERT_TRUE(catalog) << error;
    EXPECT_EQ(catalog->products,
              (std::vector<StoreProduct>{{"gems_100", "22.000 ₫"}, {"vip_month", "99.000 ₫"}}));
    EXPECT_EQ(catalog->consumables, std::set<std::string>{"gems_100"});
    EXPECT_EQ(catalog->outcomes.at("vip_month").kind, SandboxStore::Outcome::Kind::UserCancelled);
    EXPECT_EQ(catalog->outcomes.at("gems_100").kind, SandboxStore::Outcome::Kind::Failure);
    EXPECT_EQ(catalog->outcomes.at("gems_100").errorText, "Không thể kết nối");
    ASSERT_EQ(catalog->entitlements.size(), 2u);
    EXPECT_TRUE(catalog->entitlements[0].verified());
    EXPECT_EQ(catalog->entitlements[0].transaction, (StoreTransaction{"vip_month", 41, at(1714557600)}));
    EXPECT_FALSE(catalog->entitlements[1].verified());
    EXPECT_EQ(catalog->entitlements[1].verificationError->localizedDescription, "bad signature");
    EXPECT_EQ(catalog->entitlements[1].transaction.purchaseDate, at(1714557600) + 500ms);
    EXPECT_EQ(catalog->fetchError, "offline");
    EXPECT_DOUBLE_EQ(catalog->latency, 0.25);
    EXPECT_EQ(catalog->firstTransactionId, 9000u);
}

TEST(SandboxCatalog, RejectsMistakesWithAMessageNamingThePlace) {
    struct Case {
        std::string_view json;
        std::string_view expected;
    };
    const Case cases[] = {
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
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(SandboxStore::parseCatalog(c.json, &error)) << c.json;
        EXPECT_NE(error.find(c.expected), std::string::npos) << c.json << "\n  gave: " << error;
    }
}

class ConfiguredSandbox : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ =
            std::filesystem::temp_directory_path() /
            ("ovix-sandbox-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
        std::filesystem::create_directories(dir_ / "bundle");
        unsetenv("OVIX_SANDBOX_CATALOG");
    }
    void TearDown() override {
        unsetenv("OVIX_SANDBOX_CATALOG");
        std::filesystem::remove_all(dir_);
    }
    void write(const std::filesystem::path& file, std::string_view text) { std::ofstream(file) << text; }
    std::vector<std::string> configuredIds() {
        auto store = SandboxStore::createConfigured(Bundle(dir_ / "bundle"), console_);
        return ids(fetch(*store, {"a", "b", "c"}));
    }

    std::filesystem::path dir_;
    testing::CapturingConsole console_;
};

TEST_F(ConfiguredSandbox, PrefersTheNamedFileThenTheBundleFileAndSaysWhyOneCannotBeLoaded) {
    EXPECT_TRUE(configuredIds().empty());
    const auto bundled = dir_ / "bundle" / "sandbox-store.json";
    write(bundled, R"({"products": [{"id": "b"}]})");
    EXPECT_TRUE(configuredIds().empty());
    EXPECT_EQ(console_.lines(), std::vector<std::string>{"⚠️ Sandbox store: " + bundled.string() +
                                                         ": products[0] needs a text \"displayPrice\""});
    write(bundled, R"({"products": [{"id": "b", "displayPrice": "2 ₫"}]})");
    EXPECT_EQ(configuredIds(), std::vector<std::string>{"b"});

    write(dir_ / "named.json", R"({"products": [{"id": "a", "displayPrice": "1 ₫"}]})");
    setenv("OVIX_SANDBOX_CATALOG", (dir_ / "named.json").c_str(), 1);
    EXPECT_EQ(configuredIds(), std::vector<std::string>{"a"});
    setenv("OVIX_SANDBOX_CATALOG", (dir_ / "missing.json").c_str(), 1);
    EXPECT_TRUE(configuredIds().empty());
    EXPECT_EQ(console_.lines().back(),
              "⚠️ Sandbox store: cannot read " + (dir_ / "missing.json").string());
    EXPECT_EQ(console_.lines().size(), 2u);
}

SandboxStore::Catalog catalogWith(std::vector<StoreProduct> products) {
    SandboxStore::Catalog catalog;
    catalog.products = std::move(products);
    return catalog;
}

TEST(SandboxStoreProducts, AnswersKnownIdentifiersInCatalogOrderOnItsOwnThread) {
    SandboxStore store(catalogWith({{"a", "1"}, {"b", "2"}, {"a", "3"}, {"c", "4"}}));
    std::thread::id ranOn;
    auto found = await<Store::ProductsResult>([&](auto done) {
        store.products({"c", "a", "zzz"}, [&ranOn, done](Store::ProductsResult result) {
            ranOn = std::this_thread::get_id();
            done(std::move(result));
        });
    });
    EXPECT_EQ(std::get<std::vector<StoreProduct>>(found),
              (std::vector<StoreProduct>{{"a", "1"}, {"a", "3"}, {"c", "4"}}));
    EXPECT_EQ(ranOn, store.callbackThread());
    EXPECT_NE(ranOn, std::this_thread::get_id());

    EXPECT_TRUE(ids(fetch(store, {"zzz"})).empty());
    EXPECT_EQ(store.fetchRequests(), (std::vector<std::vector<std::string>>{{"c", "a", "zzz"}, {"zzz"}}));
}

TEST(SandboxStoreProducts, ScriptedFetchFailuresComeOnceOrUntilCleared) {
    SandboxStore store(catalogWith({{"a", "1"}}));
    store.failNextFetch("first");
    store.failNextFetch("second");
    auto error = [&] { return std::get<StoreError>(fetch(store, {"a"})).localizedDescription; };
    EXPECT_EQ(error(), "first");
    EXPECT_EQ(error(), "second");
    EXPECT_EQ(ids(fetch(store, {"a"})), std::vector<std::string>{"a"});
    store.setFetchError("offline");
    EXPECT_EQ(error(), "offline");
    EXPECT_EQ(error(), "offline");
    store.setFetchError(std::nullopt);
    EXPECT_EQ(ids(fetch(store, {"a"})), std::vector<std::string>{"a"});
}

TEST(SandboxStorePurchase, NextCallScriptsWinOverProductScriptsWhichOutliveThem) {
    SandboxStore store(catalogWith({{"a", "1"}, {"b", "2"}}));
    store.setOutcome("a", SandboxStore::Outcome::pending());
    store.scriptNextPurchase(SandboxStore::Outcome::failure("declined"));
    store.scriptNextPurchase(SandboxStore::Outcome::unknown());

    EXPECT_EQ(std::get<StoreError>(buy(store, {"a", "1"})).localizedDescription, "declined");
    using Kind = PurchaseOutcome::Kind;
    auto kind = [&](const StoreProduct& product) {
        return std::get<PurchaseOutcome>(buy(store, product)).kind;
    };
    EXPECT_EQ(kind({"b", "2"}), Kind::Unknown);
    EXPECT_EQ(kind({"a", "1"}), Kind::Pending);
    EXPECT_EQ(kind({"a", "1"}), Kind::Pending);
    EXPECT_EQ(kind({"b", "2"}), Kind::Success);
    store.setOutcome("b", SandboxStore::Outcome::userCancelled());
    EXPECT_EQ(kind({"b", "2"}), Kind::UserCancelled);
    EXPECT_EQ(store.purchaseRequests().size(), 6u);
}

TEST(SandboxStorePurchase, SuccessesCreateNumberedTransactionsThatEntitleUnlessConsumable) {
    auto catalog = catalogWith({{"gems", "1"}, {"vip", "2"}, {"skin", "3"}});
    catalog.consumables = {"gems"};
    catalog.entitlements = {VerificationResult::verifiedTransaction({"old", 70, at(100)})};
    catalog.outcomes["skin"] = SandboxStore::Outcome::unverified("tampered");
    SandboxStore store(std::move(catalog));

    auto before = std::chrono::system_clock::now();
    auto gems = std::get<PurchaseOutcome>(buy(store, {"gems", "1"}));
    auto vip = std::get<PurchaseOutcome>(buy(store, {"vip", "2"}));
    auto skin = std::get<PurchaseOutcome>(buy(store, {"skin", "3"}));
    ASSERT_EQ(gems.kind, PurchaseOutcome::Kind::Success);
    ASSERT_TRUE(gems.verification && vip.verification && skin.verification);
    EXPECT_EQ(gems.verification->transaction.id, 71u);
    EXPECT_EQ(gems.verification->transaction.productID, "gems");
    EXPECT_GE(gems.verification->transaction.purchaseDate,
              std::chrono::time_point_cast<Date::duration>(before));
    EXPECT_TRUE(vip.verification->verified());
    EXPECT_EQ(vip.verification->transaction.id, 72u);
    EXPECT_FALSE(skin.verification->verified());
    EXPECT_EQ(skin.verification->verificationError->localizedDescription, "tampered");

    auto entitled = drain(*store.currentEntitlements());
    ASSERT_EQ(entitled.size(), 3u);
    EXPECT_EQ(entitled[0].transaction.id, 70u);
    EXPECT_EQ(entitled[1].transaction, vip.verification->transaction);
    EXPECT_EQ(entitled[2].transaction, skin.verification->transaction);
    EXPECT_FALSE(entitled[2].verified());
}

TEST(SandboxStoreEntitlements, ASequenceIsASnapshotThatStaysEnded) {
    SandboxStore store;
    store.setEntitlements({VerificationResult::verifiedTransaction({"a", 1, at(1)}),
                           VerificationResult::verifiedTransaction({"b", 2, at(2)})});
    auto sequence = store.currentEntitlements();
    store.setEntitlements({});
    auto elements = drain(*sequence);
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_EQ(elements[1].transaction.productID, "b");
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
