// The emulator over HTTPS: the SDK reaches it once it is told to trust the emulator's authority, and
// not otherwise.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "api/ApiTest.h"
#include "emulator/EmulatorServer.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

std::string readAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

emulator::EmulatorServer::Options tlsOptions(const std::filesystem::path& data) {
    emulator::EmulatorServer::Options options;
    options.dataDirectory = data;
    options.config = emulator::EmulatorConfig::load(std::string(OVIX_EMULATOR_DATA_DIR) + "/config.json");
    options.tls = true;
    return options;
}

platform::HttpResult get(platform::HttpClient& client, const std::string& url) {
    platform::HttpRequest request;
    request.url = url;
    request.headers = {{"Authorization", "Bearer demo-token-player1"}};
    return Outcome<platform::HttpResult>().run([&](auto done) { client.send(request, done); });
}

class EmulatorTlsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        // One emulator for the process: the SDK copies its address once.
        static ScratchDirectory data("ovix-emulator-tls");
        static emulator::EmulatorServer server(tlsOptions(data.path()));
        data_ = &data;
        emulator_ = &server;
    }
    void install(platform::CurlHttpClient::Options client) {
        ovix::testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(emulator_->accountsUrl());
        headless = ovix::testing::HeadlessPlatform::create(options);
        headless.platform->http = std::make_shared<platform::CurlHttpClient>(client);
        headless.install();
        headless.store->setString("ovix_token", "demo-token-player1");
        headless.store->setString("ovix_client_id", "demo-game");
    }

    static inline ScratchDirectory* data_ = nullptr;
    static inline emulator::EmulatorServer* emulator_ = nullptr;
    ovix::testing::HeadlessPlatform headless;
};

TEST_F(EmulatorTlsTest, TheSdkReachesTheEmulatorOnlyWhenItTrustsTheEmulatorsAuthority) {
    ASSERT_TRUE(emulator_->accountsUrl().starts_with("https://127.0.0.1:"));
    for (const bool trusted : {false, true}) {
        SCOPED_TRACE(trusted ? "trusting the emulator's authority" : "the system's authorities");
        platform::CurlHttpClient::Options client;
        client.timeoutCeilingSeconds = 5;
        if (trusted) {
            client.caBundlePath = emulator_->caPath().string();
        }
        install(client);
        const auto data =
            Outcome<std::optional<Dictionary>>().run([](auto done) { OvixCore::shared().getUserInfo(done); });
        EXPECT_EQ(data.has_value(), trusted);
    }
    EXPECT_EQ(emulator_->log().entries("userinfo").size(), 1u)
        << "the untrusted handshake never got a request in";
}

TEST_F(EmulatorTlsTest, TheDefaultPlatformTrustsTheAuthorityNamedInItsVariable) {
    ScratchDirectory home("ovix-emulator-tls-home");
    setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    setenv("OVIX_CA_BUNDLE", emulator_->caPath().c_str(), 1);
    auto trusting = platform::makeDefault();
    unsetenv("OVIX_CA_BUNDLE");
    auto plain = platform::makeDefault();
    const auto url = emulator_->accountsUrl() + "/auth-connect/api/v2.0/oauth2/auth/userinfo?fields=";
    const auto answer = get(*trusting->http, url);
    ASSERT_TRUE(answer.response) << answer.error.value_or("");
    EXPECT_EQ(answer.response->status, 200);
    EXPECT_FALSE(get(*plain->http, url).response);
}

TEST_F(EmulatorTlsTest, TheAuthorityOutlivesARestartSoATrustingClientStillConnects) {
    const auto pem = readAll(emulator_->caPath());
    ASSERT_NE(pem.find("BEGIN CERTIFICATE"), std::string::npos);
    emulator::EmulatorServer restarted(tlsOptions(data_->path()));
    EXPECT_EQ(readAll(restarted.caPath()), pem);
    platform::CurlHttpClient::Options options;
    options.caBundlePath = emulator_->caPath().string();
    auto client = std::make_shared<platform::CurlHttpClient>(options);
    const auto answer = get(*client, restarted.accountsUrl() + "/_emulator/ca.pem");
    ASSERT_TRUE(answer.response) << answer.error.value_or("");
    EXPECT_EQ(answer.response->body, pem);
    EXPECT_EQ(std::filesystem::status(data_->path() / "tls" / "ca-key.pem").permissions() &
                  (std::filesystem::perms::group_all | std::filesystem::perms::others_all),
              std::filesystem::perms::none);
}

}  // namespace
}  // namespace ovix::test
