#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ovix/kit/host/Application.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::test {

/// An application without windows that records, in order, the URLs it opens ("open <url>") and its
/// registrations for remote notifications ("register"); a call off the main thread is prefixed
/// "off-main ".
class RecordingApplication : public kit::host::Application {
  public:
    // Held weakly: work pending on the queue may hold this application.
    explicit RecordingApplication(std::weak_ptr<platform::MainQueue> queue) : queue_(std::move(queue)) {}

    std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const override { return {}; }
    std::vector<std::shared_ptr<kit::Window>> windows() const override { return {}; }
    bool open(const std::string& url) override { return record("open " + url); }
    bool canOpen(const std::string&) const override { return true; }
    void registerForRemoteNotifications() override { record("register"); }

    std::vector<std::string> calls() const {
        std::lock_guard lock(mutex_);
        return calls_;
    }

  private:
    bool record(const std::string& call) {
        auto queue = queue_.lock();
        std::lock_guard lock(mutex_);
        calls_.push_back((queue && queue->isMainThread() ? "" : "off-main ") + call);
        return true;
    }

    std::weak_ptr<platform::MainQueue> queue_;
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
};

}  // namespace ovix::test
