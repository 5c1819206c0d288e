#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"

namespace ovix::test {

/// Counts what reaches the transport, so a test can prove that nothing was sent.
class CountingHttpClient : public platform::HttpClient {
  public:
    explicit CountingHttpClient(std::shared_ptr<platform::HttpClient> inner) : inner_(std::move(inner)) {}
    void send(platform::HttpRequest request, Completion completion) override {
        ++sent_;
        inner_->send(std::move(request), std::move(completion));
    }
    int sent() const { return sent_.load(); }

  private:
    std::shared_ptr<platform::HttpClient> inner_;
    std::atomic<int> sent_{0};
};

/// Answers every request with a fixed result, on a thread of its own, and keeps the requests: for
/// outcomes a real server cannot produce (a final status of 199).
class ScriptedHttpClient : public platform::HttpClient {
  public:
    explicit ScriptedHttpClient(platform::HttpResult result) : result_(std::move(result)) {}
    ~ScriptedHttpClient() override {
        for (auto& t : threads_) {
            t.join();
        }
    }
    void send(platform::HttpRequest request, Completion completion) override {
        std::lock_guard lock(mutex_);
        requests_.push_back(std::move(request));
        threads_.emplace_back([result = result_, completion = std::move(completion)] { completion(result); });
    }
    std::vector<platform::HttpRequest> requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }

  private:
    platform::HttpResult result_;
    mutable std::mutex mutex_;
    std::vector<platform::HttpRequest> requests_;
    std::vector<std::thread> threads_;
};

/// One value handed to a completion, with the thread it came on and whether it came before the
/// call that caused it returned.
template <typename T>
class Outcome {
  public:
    /// A completion that records into this outcome. Call `markReturned()` right after the call.
    std::function<void(T)> completion() {
        return [this](T value) {
            thread_ = std::this_thread::get_id();
            inline_ = !returned_.load();
            promise_.set_value(std::move(value));
        };
    }
    void markReturned() { returned_ = true; }
    /// Waits for the completion (real time, bounded); fails the test when it never comes.
    T get() {
        if (future_.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
            ADD_FAILURE() << "the completion never ran";
            return T{};
        }
        return future_.get();
    }
    std::thread::id thread() const { return thread_; }
    bool ranInline() const { return inline_; }

  private:
    std::promise<T> promise_;
    std::future<T> future_ = promise_.get_future();
    std::atomic<bool> returned_{false};
    std::thread::id thread_;
    bool inline_ = false;
};

/// Base for tests that talk to the process's loopback server through the real curl client. The
/// server is shared by every test in the process because `OvixCore` copies the backend address only
/// once (see support/LoopbackServer.h).
class ApiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        server.reset();
        ovix::testing::HeadlessPlatform::Options options;
        options.environment = platform::Environment::emulator(server.baseUrl());
        headless = ovix::testing::HeadlessPlatform::create(options);
        http =
            std::make_shared<CountingHttpClient>(std::make_shared<platform::CurlHttpClient>(clientOptions()));
        headless.platform->http = http;
        headless.install();
        ASSERT_EQ(OvixCore::shared().urlString(), server.baseUrl())
            << "OvixCore was created before the server";
    }

    /// What the curl client is built with; short ceiling so stalled answers end quickly.
    virtual platform::CurlHttpClient::Options clientOptions() const {
        platform::CurlHttpClient::Options options;
        options.timeoutCeilingSeconds = 2;
        return options;
    }

    void signIn(const std::string& token, std::optional<std::string> clientId) {
        headless.store->setString("ovix_token", token);
        if (clientId) {
            headless.store->setString("ovix_client_id", *clientId);
        }
    }

    LoopbackServer& server = LoopbackServer::shared();
    ovix::testing::HeadlessPlatform headless;
    std::shared_ptr<CountingHttpClient> http;
};

}  // namespace ovix::test
