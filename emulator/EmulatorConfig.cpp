#include "emulator/EmulatorConfig.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace ovix::emulator {

namespace {

using nlohmann::json;

json readJsonFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error(path.string() + ": cannot be read");
    }
    std::stringstream text;
    text << in.rdbuf();
    try {
        return json::parse(text.str());
    } catch (const json::exception& error) {
        throw std::runtime_error(path.string() + ": not JSON: " + error.what());
    }
}

std::string stringMember(const json& object, const char* key, bool required) {
    auto it = object.find(key);
    if (it == object.end() && !required) {
        return {};
    }
    if (it == object.end() || !it->is_string()) {
        throw std::invalid_argument(std::string("\"") + key + "\" must be a string");
    }
    return it->get<std::string>();
}

std::vector<EmulatorConfig::Account> readAccounts(const json& file) {
    if (!file.is_object() || !file.contains("accounts") || !file["accounts"].is_array()) {
        throw std::invalid_argument("expected {\"accounts\": [...]}");
    }
    std::vector<EmulatorConfig::Account> accounts;
    for (const auto& item : file["accounts"]) {
        if (!item.is_object()) {
            throw std::invalid_argument("each account is an object");
        }
        EmulatorConfig::Account account;
        account.username = stringMember(item, "username", true);
        account.password = stringMember(item, "password", true);
        account.token = stringMember(item, "token", false);
        if (item.contains("profile")) {
            if (!item["profile"].is_object()) {
                throw std::invalid_argument("\"profile\" of " + account.username + " must be an object");
            }
            account.profile = item["profile"];
        }
        accounts.push_back(std::move(account));
    }
    return accounts;
}

json readNews(const json& file) {
    if (!file.is_object() || !file.contains("items") || !file["items"].is_array()) {
        throw std::invalid_argument("expected {\"items\": [...]}");
    }
    for (const auto& item : file["items"]) {
        if (!item.is_object()) {
            throw std::invalid_argument("each news item is an object");
        }
    }
    return file["items"];
}

// A named file of the config, read with `read`; its errors name the file.
template <typename Read>
auto fromFile(const json& config, const char* key, const std::filesystem::path& base, Read read) {
    const auto name = stringMember(config, key, true);
    const auto path = std::filesystem::path(name).is_absolute() ? std::filesystem::path(name) : base / name;
    const json file = readJsonFile(path);
    try {
        return read(file);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

void readEligibility(const json& section, EmulatorConfig& config) {
    if (!section.is_object()) {
        throw std::invalid_argument("\"eligibility\" must be an object");
    }
    for (const auto& [key, value] : section.items()) {
        if (key == "default") {
            config.defaultRule = EmulatorConfig::Rule::fromJson(value);
        } else if (key == "products" && value.is_object()) {
            for (const auto& [product, rule] : value.items()) {
                config.products[product] = EmulatorConfig::Rule::fromJson(rule);
            }
        } else {
            throw std::invalid_argument("\"eligibility\": unknown member \"" + key + "\"");
        }
    }
}

}  // namespace

EmulatorConfig::Rule EmulatorConfig::Rule::fromJson(const json& value) {
    if (value == "allow") {
        return Rule{Kind::Allow, 0};
    }
    if (value == "refuse") {
        return Rule{Kind::Refuse, 0};
    }
    if (value.is_number_integer() && value.get<long long>() >= 100 && value.get<long long>() <= 599) {
        return Rule{Kind::Status, value.get<int>()};
    }
    throw std::invalid_argument("an eligibility rule is \"allow\", \"refuse\" or an HTTP status, not " +
                                value.dump());
}

EmulatorConfig EmulatorConfig::fromJson(const json& root, const std::filesystem::path& base) {
    if (!root.is_object()) {
        throw std::invalid_argument("the config is a JSON object");
    }
    EmulatorConfig config;
    for (const auto& [key, value] : root.items()) {
        if (key == "accountsFile") {
            config.accounts = fromFile(root, "accountsFile", base, readAccounts);
        } else if (key == "newsFile") {
            config.newsItems = fromFile(root, "newsFile", base, readNews);
        } else if (key == "clients" && value.is_array()) {
            for (const auto& client : value) {
                if (!client.is_string() || client.get<std::string>().empty()) {
                    throw std::invalid_argument("\"clients\" holds non-empty strings");
                }
                config.clients.insert(client.get<std::string>());
            }
        } else if (key == "eligibility") {
            readEligibility(value, config);
        } else if (key == "faults" && value.is_object()) {
            for (const auto& [route, fault] : value.items()) {
                config.faults[route] = Fault::fromJson(fault);
            }
        } else {
            throw std::invalid_argument("unknown member \"" + key + "\" (or a value of the wrong type)");
        }
    }
    return config;
}

EmulatorConfig EmulatorConfig::load(const std::filesystem::path& path) {
    const auto json = readJsonFile(path);
    try {
        return fromJson(json, path.parent_path());
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

const EmulatorConfig::Account* EmulatorConfig::findAccount(const std::string& username) const {
    for (const auto& account : accounts) {
        if (account.username == username) {
            return &account;
        }
    }
    return nullptr;
}

const EmulatorConfig::Rule& EmulatorConfig::ruleFor(const std::string& productId) const {
    auto it = products.find(productId);
    return it == products.end() ? defaultRule : it->second;
}

}  // namespace ovix::emulator
