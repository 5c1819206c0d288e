#pragma once

#include "ovix/platform/Crypto.h"

namespace ovix::platform {

/// Digests from OpenSSL, UUIDs from libuuid (random, version 4).
class OpenSslCrypto : public Crypto {
  public:
    std::string sha256Hex(std::string_view data) const override;
    std::string hmacSha256(std::string_view key, std::string_view data) const override;
    std::string randomUuid() const override;
};

}  // namespace ovix::platform
