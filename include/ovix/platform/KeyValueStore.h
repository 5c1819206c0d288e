#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ovix::platform {

/// The application's persistent key-value store (strings and integers).
///
/// An absent key is distinct from an empty string. Each key holds one kind: reading a key with the
/// other kind's getter answers nullopt. Values survive a restart of the process.
/// Threading: safe from any thread. Writes are fire-and-forget: a failing write is not reported to
/// the caller (implementations print a diagnostic line).
class KeyValueStore {
  public:
    virtual ~KeyValueStore() = default;
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    virtual void remove(std::string_view key) = 0;
};

}  // namespace ovix::platform
