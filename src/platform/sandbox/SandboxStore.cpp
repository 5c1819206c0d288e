#include "ovix/platform/SandboxStore.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <utility>

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

// ---- catalog parsing ----

struct ParseError {
    std::string text;
};

[[noreturn]] void fail(const std::string& where, const std::string& what) {
    throw ParseError{where + " " + what};
}

const Dictionary& objectAt(const Value& value, const std::string& where) {
    const auto* object = value.asObject();
    if (!object) {
        fail(where, "must be an object");
    }
    return *object;
}

// Unknown keys are mistakes (a misspelt "entitlements" would silently mean none).
void onlyKeys(const Dictionary& object, std::initializer_list<std::string_view> allowed,
              const std::string& where) {
    for (const auto& [key, _] : object) {
        if (std::find(allowed.begin(), allowed.end(), key) == allowed.end()) {
            fail(where, "has an unknown key \"" + key + "\"");
        }
    }
}

std::string textAt(const Dictionary& object, std::string_view key, const std::string& where) {
    auto it = object.find(key);
    if (it == object.end() || !it->second.asString()) {
        fail(where, "needs a text \"" + std::string(key) + "\"");
    }
    return *it->second.asString();
}

std::optional<double> numberOf(const Value& value) {
    if (auto d = value.asDouble()) {
        return d;
    }
    if (auto i = value.asInt()) {
        return static_cast<double>(*i);
    }
    if (auto u = value.asUInt()) {
        return static_cast<double>(*u);
    }
    return std::nullopt;
}

// Seconds since 1970 (a number) or UTC text "YYYY-MM-DDTHH:MM:SSZ".
Date dateOf(const Value& value, const std::string& where) {
    if (auto seconds = numberOf(value)) {
        return Date(std::chrono::duration_cast<Date::duration>(std::chrono::duration<double>(*seconds)));
    }
    if (const auto* text = value.asString()) {
        int y = 0;
        unsigned mo = 0, d = 0, h = 0, mi = 0, s = 0;
        char zone = 0;
        int consumed = 0;
        if (std::sscanf(text->c_str(), "%4d-%2u-%2uT%2u:%2u:%2u%c%n", &y, &mo, &d, &h, &mi, &s, &zone,
                        &consumed) == 7 &&
            zone == 'Z' && static_cast<std::size_t>(consumed) == text->size() && h < 24 && mi < 60 &&
            s < 60) {
            using namespace std::chrono;
            year_month_day day{year{y}, month{mo}, std::chrono::day{d}};
            if (day.ok()) {
                return sys_days(day) + hours(h) + minutes(mi) + seconds(s);
            }
        }
    }
    fail(where, "needs a \"purchaseDate\": seconds since 1970 or \"YYYY-MM-DDTHH:MM:SSZ\"");
}

SandboxStore::Outcome outcomeOf(const Value& value, const std::string& where) {
    using Outcome = SandboxStore::Outcome;
    std::string name;
    std::optional<std::string> error;
    if (const auto* text = value.asString()) {
        name = *text;
    } else {
        const auto& object = objectAt(value, where);
        onlyKeys(object, {"outcome", "error"}, where);
        name = textAt(object, "outcome", where);
        if (object.find("error") != object.end()) {
            error = textAt(object, "error", where);
        }
    }
    auto plain = [&](Outcome outcome) {
        if (error) {
            fail(where, "takes no \"error\" for \"" + name + "\"");
        }
        return outcome;
    };
    auto withError = [&](Outcome (*make)(std::string)) {
        if (!error) {
            fail(where, "needs a text \"error\" for \"" + name + "\"");
        }
        return make(*error);
    };
    if (name == "success")
        return plain(Outcome::success());
    if (name == "cancelled")
        return plain(Outcome::userCancelled());
    if (name == "pending")
        return plain(Outcome::pending());
    if (name == "unknown")
        return plain(Outcome::unknown());
    if (name == "unverified")
        return withError(&Outcome::unverified);
    if (name == "failure")
        return withError(&Outcome::failure);
    fail(where, "has outcome \"" + name +
                    "\"; expected success, cancelled, pending, unknown, unverified or failure");
}

SandboxStore::Catalog catalogOf(const Value& root) {
    SandboxStore::Catalog catalog;
    const auto& top = objectAt(root, "the catalog");
    onlyKeys(top, {"products", "outcomes", "entitlements", "fetchError", "latency", "firstTransactionId"},
             "the catalog");

    auto products = top.find("products");
    if (products == top.end() || !products->second.asArray()) {
        fail("the catalog", "needs a \"products\" list");
    }
    for (std::size_t i = 0; i < products->second.asArray()->size(); ++i) {
        std::string where = "products[" + std::to_string(i) + "]";
        const auto& entry = objectAt((*products->second.asArray())[i], where);
        onlyKeys(entry, {"id", "displayPrice", "consumable"}, where);
        StoreProduct product{textAt(entry, "id", where), textAt(entry, "displayPrice", where)};
        if (auto consumable = entry.find("consumable"); consumable != entry.end()) {
            if (!consumable->second.asBool()) {
                fail(where, "needs true or false for \"consumable\"");
            }
            if (*consumable->second.asBool()) {
                catalog.consumables.insert(product.id);
            }
        }
        catalog.products.push_back(std::move(product));
    }

    if (auto outcomes = top.find("outcomes"); outcomes != top.end()) {
        for (const auto& [productId, outcome] : objectAt(outcomes->second, "\"outcomes\"")) {
            catalog.outcomes[productId] = outcomeOf(outcome, "outcomes[\"" + productId + "\"]");
        }
    }

    if (auto entitlements = top.find("entitlements"); entitlements != top.end()) {
        const auto* list = entitlements->second.asArray();
        if (!list) {
            fail("\"entitlements\"", "must be a list");
        }
        for (std::size_t i = 0; i < list->size(); ++i) {
            std::string where = "entitlements[" + std::to_string(i) + "]";
            const auto& entry = objectAt((*list)[i], where);
            onlyKeys(entry, {"productId", "transactionId", "purchaseDate", "unverified"}, where);
            StoreTransaction transaction;
            transaction.productID = textAt(entry, "productId", where);
            auto id = entry.find("transactionId");
            if (id == entry.end() || !id->second.asUInt()) {
                fail(where, "needs a non-negative integer \"transactionId\"");
            }
            transaction.id = *id->second.asUInt();
            auto date = entry.find("purchaseDate");
            transaction.purchaseDate = dateOf(date == entry.end() ? Value() : date->second, where);
            if (entry.find("unverified") != entry.end()) {
                catalog.entitlements.push_back(VerificationResult::unverifiedTransaction(
                    std::move(transaction), SandboxStore::error(textAt(entry, "unverified", where))));
            } else {
                catalog.entitlements.push_back(
                    VerificationResult::verifiedTransaction(std::move(transaction)));
            }
        }
    }

    if (top.find("fetchError") != top.end()) {
        catalog.fetchError = textAt(top, "fetchError", "the catalog");
    }
    if (auto latency = top.find("latency"); latency != top.end()) {
        auto seconds = numberOf(latency->second);
        if (!seconds || *seconds < 0 || *seconds > 3600) {
            fail("\"latency\"", "must be a number of seconds from 0 to 3600");
        }
        catalog.latency = *seconds;
    }
    if (auto first = top.find("firstTransactionId"); first != top.end()) {
        if (!first->second.asUInt()) {
            fail("\"firstTransactionId\"", "must be a non-negative integer");
        }
        catalog.firstTransactionId = *first->second.asUInt();
    }
    return catalog;
}

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
    auto root = Value::fromJson(json);
    try {
        if (!root) {
            throw ParseError{"the catalog is not JSON text"};
        }
        return catalogOf(*root);
    } catch (const ParseError& e) {
        if (error) {
            *error = e.text;
        }
        return std::nullopt;
    }
}

std::optional<SandboxStore::Catalog> SandboxStore::loadCatalog(const std::filesystem::path& file,
                                                               std::string* error) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf())) {
        if (error) {
            *error = "cannot read " + file.string();
        }
        return std::nullopt;
    }
    std::string why;
    auto catalog = parseCatalog(text.str(), &why);
    if (!catalog && error) {
        *error = file.string() + ": " + why;
    }
    return catalog;
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
