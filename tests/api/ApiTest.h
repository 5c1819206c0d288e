#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"

namespace ovix::test {

/// Runs a call with a completion and waits (bounded) for the value; remembers the thread the value
/// came on and whether it came inline, before the call returned.
template <typename T>
class Outcome {
  public:
    T run(const std::function<void(std::function<void(T)>)>& call) {
        const auto caller = std::this_thread::get_id();
        call([this, caller](T value) {
            thread = std::this_thread::get_id();
            ranInline = !returned_ && thread == caller;
            promise_.set_value(std::move(value));
        });
        returned_ = true;
        auto future = promise_.get_future();
        if (future.wait_for(std::chrono::seconds(20)) == std::future_status::ready) {
            return future.get();
        }
        ADD_FAILURE() << "the completion never ran";
        return T{};
    }
    std::thread::id thread;
    bool ranInline = false;

  private:
    std::atomic<bool> returned_{false};
    std::promise<T> promise_;
};

/// The real curl client against the process's loopback server (see support/LoopbackServer.h), on a
/// fresh headless platform per test. Stalled answers end after the client's 2-second ceiling.
class ApiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        server.reset();
        ovix::testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(server.baseUrl());
        headless = ovix::testing::HeadlessPlatform::create(options);
        platform::CurlHttpClient::Options client;
        client.timeoutCeilingSeconds = 2;
        headless.platform->http = std::make_shared<platform::CurlHttpClient>(client);
        headless.install();
        ASSERT_EQ(OvixCore::shared().urlString(), server.baseUrl())
            << "OvixCore was created before the server";
    }

    void store(const char* key, const std::string& value) { headless.store->setString(key, value); }
    /// The one request the server has seen; fails the test when it saw another number.
    LoopbackServer::Request onlyRequest() const {
        auto seen = server.requests();
        EXPECT_EQ(seen.size(), 1u);
        return seen.empty() ? LoopbackServer::Request{} : seen.front();
    }

    LoopbackServer& server = LoopbackServer::shared();
    ovix::testing::HeadlessPlatform headless;
};

}  // namespace ovix::test
