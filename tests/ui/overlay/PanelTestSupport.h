#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/EventSlot.h"
#include "ovix/kit/Window.h"
#include "ovix/platform/HttpClient.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "support/RecordingListener.h"
#include "ui/overlay/SidebarPopup.h"

namespace ovix::test {

/// An HTTP client that keeps every request and answers only when the test says so, from the test's
/// thread (so never inside `send`, as the contract requires).
class HeldHttpClient : public platform::HttpClient {
  public:
    void send(platform::HttpRequest request, Completion completion) override {
        std::lock_guard lock(mutex_);
        pending_.push_back({std::move(request), std::move(completion)});
    }
    std::size_t sentCount() const {
        std::lock_guard lock(mutex_);
        return pending_.size() + answered_;
    }
    std::string lastUrl() const {
        std::lock_guard lock(mutex_);
        return pending_.empty() ? std::string() : pending_.back().request.url;
    }
    /// Answers the oldest request still waiting; false when none is.
    bool answer(long status, std::string body) {
        Completion completion;
        {
            std::lock_guard lock(mutex_);
            if (pending_.empty()) {
                return false;
            }
            completion = std::move(pending_.front().completion);
            pending_.erase(pending_.begin());
            ++answered_;
        }
        completion(platform::HttpResult{platform::HttpResponse{status, {}, std::move(body)}, std::nullopt});
        return true;
    }

  private:
    struct Pending {
        platform::HttpRequest request;
        Completion completion;
    };
    mutable std::mutex mutex_;
    std::vector<Pending> pending_;
    std::size_t answered_ = 0;
};

/// A headless platform whose SDK bundle is the repository's own resources, with an HTTP client that
/// answers on request and a recording listener (not registered until a test registers it). The
/// panel's remembered tab starts at 0 in every test.
class PanelTest : public ::testing::Test {
  protected:
    PanelTest() { start(); }
    ~PanelTest() override {
        EventSlot::shared().setListener(nullptr);
        SidebarPopup::selectedIndex = 0;
    }

    /// (Re)installs the platform with a screen of `portrait` size (turned when `landscape`).
    void start(kit::Size portrait = {390, 844}, bool landscape = false, int windows = 1) {
        testing::HeadlessPlatform::Options options;
        options.codeResources = OVIX_RESOURCES_DIR;
        options.application.screenSize = portrait;
        options.application.windowCount = windows;
        options.application.openableSchemes = {"http", "https"};
        h = testing::HeadlessPlatform::create(options);
        http = std::make_shared<HeldHttpClient>();
        h.platform->http = http;
        h.install();
        if (landscape) {
            h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        }
        SidebarPopup::selectedIndex = 0;
    }

    std::shared_ptr<kit::Window> window() const { return h.application->windows().front(); }
    double now() const { return h.mainQueue->now(); }

    testing::HeadlessPlatform h;
    std::shared_ptr<HeldHttpClient> http;
    std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
};

}  // namespace ovix::test
