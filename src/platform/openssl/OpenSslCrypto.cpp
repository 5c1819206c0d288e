#include "platform/openssl/OpenSslCrypto.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <uuid/uuid.h>

#include <array>

namespace ovix::platform {

std::string OpenSslCrypto::sha256Hex(std::string_view data) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    EVP_Digest(data.data(), data.size(), digest.data(), &length, EVP_sha256(), nullptr);
    static constexpr char kHex[] = "0123456789abcdef";
    std::string out;
    out.reserve(length * 2);
    for (unsigned int i = 0; i < length; ++i) {
        out.push_back(kHex[digest[i] >> 4]);
        out.push_back(kHex[digest[i] & 0x0f]);
    }
    return out;
}

std::string OpenSslCrypto::hmacSha256(std::string_view key, std::string_view data) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> mac{};
    unsigned int length = 0;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(data.data()), data.size(), mac.data(), &length);
    return std::string(reinterpret_cast<const char*>(mac.data()), length);
}

std::string OpenSslCrypto::randomUuid() const {
    uuid_t id;
    uuid_generate_random(id);
    char text[37];
    uuid_unparse_upper(id, text);
    return std::string(text);
}

}  // namespace ovix::platform
