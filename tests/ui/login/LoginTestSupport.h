#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"
#include "support/RecordingListener.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {

/// A headless platform with one 390 x 844 window (safe area top 47), the SDK logo in its resource
/// bundle (unless told otherwise) and a recording listener; the accounts host is the process's
/// loopback server, reached with the real HTTP client, and finds every session valid until told.
class LoginScreenTest : public ::testing::Test {
  protected:
    static constexpr const char* userInfoPath = "/auth-connect/api/v2.0/oauth2/auth/userinfo";

    explicit LoginScreenTest(bool withLogo = true) {
        std::filesystem::create_directories(dir_ / "OvixSdkResources.bundle");
        if (withLogo) {
            dir_.write("OvixSdkResources.bundle/ic_sdk_splash.png", "the screens only place it");
        }
        accounts.reset();
        accounts.on(userInfoPath, LoopbackServer::Reply{200, R"({"Data":{"Name":"Player"}})"});
        testing::HeadlessPlatform::Options options;
        options.codeResources = dir_.path();
        options.environment = platform::Environment::emulator(accounts.baseUrl());
        h = testing::HeadlessPlatform::create(options);
        h.platform->http = std::make_shared<platform::CurlHttpClient>();
        h.install();
        OvixCore::shared().setListener(listener);
    }

    ~LoginScreenTest() override { OvixCore::shared().setListener(nullptr); }

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

    LoopbackServer& accounts = LoopbackServer::shared();
    testing::HeadlessPlatform h;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();

  private:
    ScratchDirectory dir_{"ovix-login"};
};

}  // namespace ovix::test
