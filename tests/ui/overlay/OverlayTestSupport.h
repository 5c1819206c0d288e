#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "ovix/kit/Window.h"
#include "ovix/testing/FixedTimeZone.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/LoopbackServer.h"

namespace ovix::test {

/// A headless platform whose application has one key window covering a screen of the chosen size
/// (390 x 844 unless told), the SDK's real resource bundle, a time zone seven hours east of UTC, and
/// both backends on the process's loopback server, reached with the real HTTP client.
class OverlayTest : public ::testing::Test {
  protected:
    static constexpr const char* feedPath = "/game/online/api/v2.0/client/all-news";

    OverlayTest() {
        server.reset();
        install({390, 844});
    }

    /// A fresh platform (and application) with a `screen`-sized main screen, installed.
    void install(kit::Size screen, int windowCount = 1) {
        testing::HeadlessPlatform::Options options;
        options.codeResources = OVIX_RESOURCES_DIR;
        options.environment = platform::Environment::emulator(server.baseUrl());
        options.application.screenSize = screen;
        options.application.windowCount = windowCount;
        h = testing::HeadlessPlatform::create(options);
        h.platform->http = std::make_shared<platform::CurlHttpClient>();
        h.platform->timeZone = std::make_shared<testing::FixedTimeZone>(7 * 3600);
        h.install();
    }

    std::shared_ptr<kit::Window> window() const { return h.application->windows().front(); }

    /// Waits (real time, bounded) until the transport has posted work to the main queue, without
    /// running it.
    bool waitForPostedWork() const {
        for (int i = 0; i < 500; ++i) {
            if (h.mainQueue->pendingCount() > 0) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    LoopbackServer& server = LoopbackServer::shared();
    testing::HeadlessPlatform h;
};

}  // namespace ovix::test
