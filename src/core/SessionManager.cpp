#include "core/SessionManager.h"

#include "ovix/platform/Platform.h"

namespace ovix {

SessionManager& SessionManager::shared() {
    static SessionManager instance;
    return instance;
}

void SessionManager::saveToken(std::string_view token) {
    auto& store = *platform::current()->keyValueStore;
    store.setString(tokenKey, token);
    store.setString(statusKey, "login");
}

void SessionManager::clearToken() {
    auto& store = *platform::current()->keyValueStore;
    store.remove(tokenKey);
    store.setString(statusKey, "logout");
}

std::string SessionManager::readString(std::string_view key) {
    return platform::current()->keyValueStore->string(key).value_or("");
}

}  // namespace ovix
