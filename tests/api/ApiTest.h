#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"

namespace ovix::test {

/// Counts what reaches the transport, so that a test can prove nothing was sent.
class CountingHttpClient : public platform::HttpClient {
  public:
    explicit CountingHttpClient(std::shared_ptr<platform::HttpClient> inner) : inner_(std::move(inner)) {}
    void send(platform::HttpRequest request, Completion completion) override {
        ++sent;
        inner_->send(std::move(request), std::move(completion));
    }
    std::atomic<int> sent{0};

  private:
    std::shared_ptr<platform::HttpClient> inner_;
};

/// Runs a call with a completion and waits (bounded) for the value; remembers the thread the value
/// came on and whether it came inline, before the call returned.
template <typename T>
class Outcome {
  public:
    T run(const std::function<void(std::function<void(T)>)>& call) {
        caller_ = std::this_thread::get_id();
        calling_ = true;
        call([this](T value) {
            thread = std::this_thread::get_id();
            ranInline = calling_ && thread == caller_;
            promise_.set_value(std::move(value));
        });
        calling_ = false;
        if (future_.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
            ADD_FAILURE() << "the completion never ran";
            return T{};
        }
        return future_.get();
    }
    std::thread::id thread;
    bool ranInline = false;

  private:
    std::thread::id caller_;
    std::atomic<bool> calling_{false};
    std::promise<T> promise_;
    std::future<T> future_ = promise_.get_future();
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
        http = std::make_shared<CountingHttpClient>(std::make_shared<platform::CurlHttpClient>(client));
        headless.platform->http = http;
        headless.install();
        ASSERT_EQ(OvixCore::shared().urlString(), server.baseUrl())
            << "OvixCore was created before the server";
    }

    void store(const char* key, const std::string& value) { headless.store->setString(key, value); }

    LoopbackServer& server = LoopbackServer::shared();
    ovix::testing::HeadlessPlatform headless;
    std::shared_ptr<CountingHttpClient> http;
};

}  // namespace ovix::test
