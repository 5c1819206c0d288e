#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ovix/platform/Application.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::test {

/// An application without windows that records the URLs it opens and its registrations for remote
/// notifications, and whether each came on the main thread.
class RecordingApplication : public platform::Application {
  public:
    // Held weakly: work pending on the queue may hold this application.
    explicit RecordingApplication(std::weak_ptr<platform::MainQueue> queue) : queue_(std::move(queue)) {}

    std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const override { return {}; }
    std::vector<std::shared_ptr<kit::Window>> windows() const override { return {}; }
    bool open(const std::string& url) override {
        std::lock_guard lock(mutex_);
        opened_.push_back(url);
        offMain_ += !onMain();
        return true;
    }
    bool canOpen(const std::string&) const override { return true; }
    void registerForRemoteNotifications() override {
        std::lock_guard lock(mutex_);
        ++registrations_;
        offMain_ += !onMain();
    }

    std::vector<std::string> opened() const {
        std::lock_guard lock(mutex_);
        return opened_;
    }
    int registrations() const {
        std::lock_guard lock(mutex_);
        return registrations_;
    }
    /// Calls that arrived off the main thread.
    int offMainCalls() const {
        std::lock_guard lock(mutex_);
        return offMain_;
    }

  private:
    bool onMain() const {
        auto queue = queue_.lock();
        return queue && queue->isMainThread();
    }

    std::weak_ptr<platform::MainQueue> queue_;
    mutable std::mutex mutex_;
    std::vector<std::string> opened_;
    int registrations_ = 0;
    int offMain_ = 0;
};

}  // namespace ovix::test
