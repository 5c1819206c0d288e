#pragma once

#include <string>
#include <string_view>

namespace ovix::platform {

/// Digests and identifiers the SDK needs from the system's cryptography.
/// Threading: any thread; calls are independent.
class Crypto {
  public:
    virtual ~Crypto() = default;
    /// SHA-256 of `data` as 64 lower-case hexadecimal digits.
    virtual std::string sha256Hex(std::string_view data) const = 0;
    /// HMAC-SHA-256 of `data` under `key`: the 32 raw bytes.
    virtual std::string hmacSha256(std::string_view key, std::string_view data) const = 0;
    /// A fresh random UUID in upper-case text form ("E621E1F8-C36C-495A-93FC-0C247A3E6E5F").
    virtual std::string randomUuid() const = 0;
};

}  // namespace ovix::platform
