#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "emulator/Fault.h"

namespace ovix::emulator {

/// What the emulator serves: demo accounts, the clients it knows, eligibility rules per product, the
/// news feed and faults to start with. Read from a JSON file (see docs/emulator.md); the accounts and
/// the news sit in files of their own, named relative to the config file.
struct EmulatorConfig {
    struct Account {
        std::string username;
        std::string password;
        std::string token;  ///< a fixed token that always works for this account ("" for none)
        nlohmann::json profile = nlohmann::json::object();  ///< the user-info fields, as served
    };
    /// The answer to one product's eligibility check.
    struct Rule {
        enum class Kind { Allow, Refuse, Status };
        Kind kind = Kind::Allow;
        int status = 0;  ///< for `Status`: the HTTP status answered

        /// "allow", "refuse" or an HTTP status number (100-599). Throws std::invalid_argument.
        static Rule fromJson(const nlohmann::json& json);
    };

    std::vector<Account> accounts;
    /// Client ids the login page accepts; empty means any non-empty id.
    std::set<std::string> clients;
    Rule defaultRule;
    std::map<std::string, Rule> products;
    nlohmann::json newsItems = nlohmann::json::array();  ///< feed items, in feed order
    std::map<std::string, Fault> faults;                 ///< by route name

    /// Reads `path` and the files it names. Throws std::runtime_error naming the file and the problem.
    static EmulatorConfig load(const std::filesystem::path& path);
    /// From an already-parsed config; relative file names resolve against `baseDirectory`.
    static EmulatorConfig fromJson(const nlohmann::json& json, const std::filesystem::path& baseDirectory);

    const Account* findAccount(const std::string& username) const;
    const Rule& ruleFor(const std::string& productId) const;
};

}  // namespace ovix::emulator
