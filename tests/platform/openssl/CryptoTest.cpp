#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "platform/openssl/OpenSslCrypto.h"

namespace {

std::string hex(const std::string& bytes) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out += kHex[c >> 4];
        out += kHex[c & 15];
    }
    return out;
}

TEST(Crypto, DigestsMatchPublishedVectors) {
    ovix::platform::OpenSslCrypto crypto;
    EXPECT_EQ(crypto.sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(crypto.sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(hex(crypto.hmacSha256("Jefe", "what do ya want for nothing?")),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
}

TEST(Crypto, UuidsAreFreshUpperCaseVersion4) {
    ovix::platform::OpenSslCrypto crypto;
    std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        auto id = crypto.randomUuid();
        EXPECT_TRUE(std::regex_match(id, form)) << id;
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 100u);
}

}  // namespace
