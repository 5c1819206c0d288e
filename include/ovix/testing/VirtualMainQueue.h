#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "ovix/platform/MainQueue.h"

namespace ovix::testing {

/// A main queue whose clock only moves when the test says so.
///
/// Work posted with `async` is due now; `asyncAfter(s)` is due `s` virtual seconds from now. Nothing
/// runs until the test drives the queue from the main thread (the thread that created the queue) with
/// `runUntilIdle`, `advance` or `runUntil`. Work may be posted from any thread.
class VirtualMainQueue : public platform::MainQueue {
  public:
    VirtualMainQueue();

    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override;
    double now() const override;

    /// Runs all work due at the current time, including work that it posts, until none is due.
    /// Returns how many items ran.
    std::size_t runUntilIdle();
    /// Moves the clock forward by `seconds`, running each item at its due time in due order, then
    /// runs until idle.
    void advance(double seconds);
    /// Waits in real time, up to `timeout`, for `done` to hold, running due work as it arrives from
    /// other threads. The clock does not move. Returns the final value of `done()`.
    bool runUntil(const std::function<bool()>& done,
                  std::chrono::milliseconds timeout = std::chrono::milliseconds(5000));
    /// Items waiting, due or not.
    std::size_t pendingCount() const;
    /// Makes the calling thread the main thread (for tests that drive the queue from another thread).
    void adoptCurrentThread();

  private:
    bool runOneDue();

    mutable std::mutex mutex_;
    std::condition_variable posted_;
    std::multimap<std::pair<double, std::size_t>, std::function<void()>> items_;
    std::size_t sequence_ = 0;
    double now_ = 0;
    std::thread::id mainThread_;
};

}  // namespace ovix::testing
