#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "support/RecordingListener.h"

namespace ovix::test {

/// An HTTP client whose answers the test decides; each answer comes on a thread of its own, as a
/// real transport's would. Threads are joined when the client goes.
class ScriptedHttpClient : public platform::HttpClient {
  public:
    using Responder = std::function<platform::HttpResult(const platform::HttpRequest&)>;

    explicit ScriptedHttpClient(Responder responder) : responder_(std::move(responder)) {}
    ~ScriptedHttpClient() override { joinAll(); }

    /// Waits for every answer given so far to be delivered.
    void joinAll() {
        std::vector<std::thread> threads;
        {
            std::lock_guard lock(mutex_);
            threads.swap(threads_);
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }

    void send(platform::HttpRequest request, Completion completion) override {
        std::lock_guard lock(mutex_);
        requests_.push_back(request);
        threads_.emplace_back([this, request = std::move(request), completion = std::move(completion)] {
            completion(responder_(request));
        });
    }

    std::vector<platform::HttpRequest> requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }

    static platform::HttpResult reply(long status, std::string body) {
        return {platform::HttpResponse{status, {}, std::move(body)}, std::nullopt};
    }

  private:
    Responder responder_;
    mutable std::mutex mutex_;
    std::vector<platform::HttpRequest> requests_;
    std::vector<std::thread> threads_;
};

/// A headless platform with one 390 x 844 window (safe area top 47), the SDK logo in its resource
/// bundle (unless told otherwise), a recording listener and a scripted HTTP client.
class LoginScreenTest : public ::testing::Test {
  protected:
    explicit LoginScreenTest(bool withLogo = true, int windowCount = 1) {
        dir_ = std::filesystem::temp_directory_path() /
               ("ovix-login-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_ / "OvixSdkResources.bundle");
        if (withLogo) {
            std::ofstream(dir_ / "OvixSdkResources.bundle" / "ic_sdk_splash.png", std::ios::binary)
                << pngHeader(512, 512);
        }
        testing::HeadlessPlatform::Options options;
        options.codeResources = dir_;
        options.application.windowCount = windowCount;
        h = testing::HeadlessPlatform::create(options);
        http = std::make_shared<ScriptedHttpClient>(
            [this](const platform::HttpRequest& request) { return userInfoAnswer(request); });
        h.platform->http = http;
        h.install();
        OvixCore::shared().setListener(listener);
    }

    ~LoginScreenTest() override {
        http->joinAll();  // answers refer to this fixture
        OvixCore::shared().setListener(nullptr);
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }

    /// What the user-info request answers; a valid session by default.
    virtual platform::HttpResult userInfoAnswer(const platform::HttpRequest&) {
        return ScriptedHttpClient::reply(userInfoStatus, R"({"Data":{"Name":"Player"}})");
    }

    std::shared_ptr<kit::Window> window() const { return h.application->windows().front(); }

    /// The controller shown by the first window's navigation controller, as `T` (null otherwise).
    template <class T>
    std::shared_ptr<T> shownScreen() const {
        auto navigation =
            std::dynamic_pointer_cast<kit::NavigationController>(window()->rootViewController());
        return navigation ? std::dynamic_pointer_cast<T>(navigation->topViewController()) : nullptr;
    }

    void setStored(const std::string& key, const std::string& value) { h.store->setString(key, value); }
    std::string stored(const std::string& key) const { return SessionManager::readString(key); }

    static std::string pngHeader(unsigned width, unsigned height) {
        std::string bytes("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
        for (unsigned v : {width, height}) {
            for (int shift = 24; shift >= 0; shift -= 8) {
                bytes.push_back(static_cast<char>((v >> shift) & 0xFF));
            }
        }
        return bytes + std::string("\x08\x06\0\0\0", 5);
    }

    testing::HeadlessPlatform h;
    std::shared_ptr<ScriptedHttpClient> http;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
    long userInfoStatus = 200;

  private:
    std::filesystem::path dir_;
};

}  // namespace ovix::test
