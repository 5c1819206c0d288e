#include "ovix/testing/MemoryKeyValueStore.h"

namespace ovix::testing {

std::optional<std::string> MemoryKeyValueStore::string(std::string_view key) const {
    std::lock_guard lock(mutex_);
    auto it = values_.find(key);
    if (it == values_.end() || !std::holds_alternative<std::string>(it->second)) {
        return std::nullopt;
    }
    return std::get<std::string>(it->second);
}

std::optional<std::int64_t> MemoryKeyValueStore::integer(std::string_view key) const {
    std::lock_guard lock(mutex_);
    auto it = values_.find(key);
    if (it == values_.end() || !std::holds_alternative<std::int64_t>(it->second)) {
        return std::nullopt;
    }
    return std::get<std::int64_t>(it->second);
}

void MemoryKeyValueStore::setString(std::string_view key, std::string_view value) {
    std::lock_guard lock(mutex_);
    values_.insert_or_assign(std::string(key), std::string(value));
    journal_.push_back("set " + std::string(key));
}

void MemoryKeyValueStore::setInteger(std::string_view key, std::int64_t value) {
    std::lock_guard lock(mutex_);
    values_.insert_or_assign(std::string(key), value);
    journal_.push_back("set " + std::string(key));
}

void MemoryKeyValueStore::remove(std::string_view key) {
    std::lock_guard lock(mutex_);
    if (auto it = values_.find(key); it != values_.end()) {
        values_.erase(it);
    }
    journal_.push_back("remove " + std::string(key));
}

bool MemoryKeyValueStore::contains(std::string_view key) const {
    std::lock_guard lock(mutex_);
    return values_.find(key) != values_.end();
}

std::vector<std::string> MemoryKeyValueStore::journal() const {
    std::lock_guard lock(mutex_);
    return journal_;
}

}  // namespace ovix::testing
