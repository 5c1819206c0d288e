#pragma once

#include <string>
#include <string_view>

namespace ovix {

/// The little state that survives a restart: the access token, the game's client id and the login
/// status word, in the platform's key-value store.
///
/// There are no getters: readers ask the store for the key directly and treat a missing value as the
/// empty string (`readString`). Safe from any thread (the store is); adds no locking of its own.
class SessionManager {
  public:
    static SessionManager& shared();

    const std::string tokenKey = "ovix_token";
    const std::string clientIdKey = "ovix_client_id";
    const std::string packageNameKey = "ovix_package";
    const std::string statusKey = "ovix_status";

    /// Stores the token (no validation, empty included), then the status "login": two writes, token
    /// first.
    void saveToken(std::string_view token);
    /// Removes the token, then stores the status "logout". The client id stays.
    void clearToken();

    /// The string stored under `key` in the installed platform's store; "" when missing or not a
    /// string.
    static std::string readString(std::string_view key);

  private:
    SessionManager() = default;
};

}  // namespace ovix
