#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include "ovix/platform/KeyValueStore.h"

namespace ovix::testing {

/// An in-memory key-value store with the real store's semantics (absent is not empty, one kind per
/// key). Safe from any thread. Values live as long as the object.
class MemoryKeyValueStore : public platform::KeyValueStore {
  public:
    std::optional<std::string> string(std::string_view key) const override;
    std::optional<std::int64_t> integer(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void remove(std::string_view key) override;

    bool contains(std::string_view key) const;
    /// Every write and removal in order, as "set <key>" / "remove <key>", for tests of write order.
    std::vector<std::string> journal() const;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, std::variant<std::string, std::int64_t>, std::less<>> values_;
    std::vector<std::string> journal_;
};

}  // namespace ovix::testing
