#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

#include "ovix/platform/MainQueue.h"

namespace ovix::platform {

/// A real-time main queue for processes without a UI toolkit: one dedicated thread is the main
/// thread and runs posted work in due order. Destroying the queue drops work not yet due and joins
/// the thread (never from the queue's own thread).
class ThreadMainQueue : public MainQueue {
  public:
    ThreadMainQueue();
    ~ThreadMainQueue() override;

    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override;
    double now() const override;

  private:
    using Clock = std::chrono::steady_clock;
    void loop();

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::multimap<std::pair<Clock::time_point, std::size_t>, std::function<void()>> items_;
    std::size_t sequence_ = 0;
    bool stopping_ = false;
    Clock::time_point start_ = Clock::now();
    std::thread thread_;
};

}  // namespace ovix::platform
