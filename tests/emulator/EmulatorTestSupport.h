#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <memory>
#include <string>

#include "api/ApiTest.h"
#include "emulator/EmulatorServer.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {

/// The shipped demo config, served by one emulator for the whole test process (the SDK copies the
/// backend address once per process), with its uploads in a scratch directory.
class SharedEmulator {
  public:
    static SharedEmulator& instance() {
        static SharedEmulator emulator;
        return emulator;
    }
    emulator::EmulatorServer& server() { return *server_; }
    const ScratchDirectory& data() const { return data_; }

  private:
    SharedEmulator() : data_("ovix-emulator-test") {
        emulator::EmulatorServer::Options options;
        options.dataDirectory = data_.path();
        options.config = emulator::EmulatorConfig::load(std::string(OVIX_EMULATOR_DATA_DIR) + "/config.json");
        server_ = std::make_unique<emulator::EmulatorServer>(std::move(options));
    }
    ScratchDirectory data_;
    std::unique_ptr<emulator::EmulatorServer> server_;
};

/// The SDK on the headless platform with the real curl client, pointed at the shared emulator with
/// `Environment::emulator`; faults and the log are cleared before each test.
class EmulatorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        emu.faults().clearAll();
        emu.log().clear();
        ovix::testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(emu.accountsUrl());
        headless = ovix::testing::HeadlessPlatform::create(options);
        platform::CurlHttpClient::Options client;
        client.timeoutCeilingSeconds = 5;
        headless.platform->http = std::make_shared<platform::CurlHttpClient>(client);
        headless.install();
        ASSERT_EQ(OvixCore::shared().urlString(), emu.accountsUrl())
            << "OvixCore was created before the emulator";
    }

    void signInAs(const std::string& token, const std::string& clientId = "demo-game") {
        headless.store->setString("ovix_client_id", clientId);
        headless.store->setString("ovix_token", token);
    }
    /// A plain client for what the SDK does not send (the sign-in form, raw fault checks).
    httplib::Client raw() const {
        httplib::Client client(emu.accountsUrl());
        client.set_read_timeout(5, 0);
        return client;
    }

    emulator::EmulatorServer& emu = SharedEmulator::instance().server();
    ovix::testing::HeadlessPlatform headless;
};

}  // namespace ovix::test
