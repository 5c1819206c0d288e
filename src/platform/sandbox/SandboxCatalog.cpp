#include "platform/sandbox/SandboxCatalog.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <utility>

namespace ovix::platform {

namespace {

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
// A date only when `seconds` lies where a Date can hold it (about the years 1678 to 2262); converting
// anything further would overflow.
std::optional<Date> dateFromSeconds(double seconds) {
    const double limit = std::chrono::duration<double>(Date::duration::max()).count();
    if (!std::isfinite(seconds) || std::abs(seconds) >= limit) {
        return std::nullopt;
    }
    return Date(std::chrono::duration_cast<Date::duration>(std::chrono::duration<double>(seconds)));
}

std::optional<Date> dateFromText(const std::string& text) {
    int y = 0;
    unsigned mo = 0, d = 0, h = 0, mi = 0, s = 0;
    char zone = 0;
    int consumed = 0;
    if (std::sscanf(text.c_str(), "%4d-%2u-%2uT%2u:%2u:%2u%c%n", &y, &mo, &d, &h, &mi, &s, &zone,
                    &consumed) != 7 ||
        zone != 'Z' || static_cast<std::size_t>(consumed) != text.size() || h >= 24 || mi >= 60 || s >= 60) {
        return std::nullopt;
    }
    using namespace std::chrono;
    const year_month_day day{year{y}, month{mo}, std::chrono::day{d}};
    if (!day.ok()) {
        return std::nullopt;
    }
    const sys_seconds at = sys_days(day) + hours(h) + minutes(mi) + seconds(s);
    return dateFromSeconds(static_cast<double>(at.time_since_epoch().count()));
}

Date dateOf(const Value& value, const std::string& where) {
    auto seconds = numberOf(value);
    const auto* text = value.asString();
    if (auto date = seconds ? dateFromSeconds(*seconds) : text ? dateFromText(*text) : std::nullopt) {
        return *date;
    }
    fail(where,
         "needs a \"purchaseDate\": seconds since 1970 or \"YYYY-MM-DDTHH:MM:SSZ\", between the years 1678 "
         "and 2262");
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

void readProducts(const Dictionary& top, SandboxStore::Catalog& catalog) {
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
}

VerificationResult entitlementOf(const Value& value, const std::string& where) {
    const auto& entry = objectAt(value, where);
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
        return VerificationResult::unverifiedTransaction(
            std::move(transaction), SandboxStore::error(textAt(entry, "unverified", where)));
    }
    return VerificationResult::verifiedTransaction(std::move(transaction));
}

void readSettings(const Dictionary& top, SandboxStore::Catalog& catalog) {
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
}

SandboxStore::Catalog catalogOf(const Value& root) {
    SandboxStore::Catalog catalog;
    const auto& top = objectAt(root, "the catalog");
    onlyKeys(top, {"products", "outcomes", "entitlements", "fetchError", "latency", "firstTransactionId"},
             "the catalog");
    readProducts(top, catalog);
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
            catalog.entitlements.push_back(
                entitlementOf((*list)[i], "entitlements[" + std::to_string(i) + "]"));
        }
    }
    readSettings(top, catalog);
    return catalog;
}

}  // namespace

std::optional<SandboxStore::Catalog> SandboxCatalog::parse(std::string_view json, std::string* error) {
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

std::optional<SandboxStore::Catalog> SandboxCatalog::load(const std::filesystem::path& file,
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
    auto catalog = parse(text.str(), &why);
    if (!catalog && error) {
        *error = file.string() + ": " + why;
    }
    return catalog;
}

}  // namespace ovix::platform
