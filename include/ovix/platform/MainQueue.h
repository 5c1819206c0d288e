#pragma once

#include <functional>

namespace ovix::platform {

/// The one UI thread's work queue.
///
/// Threading: `async` and `asyncAfter` may be called from any thread; the work always runs later on
/// the main thread, never inline in the call, in the order it was posted (for equal due times).
/// `now` is the queue's clock in seconds (virtual in the headless platform); animations and delays
/// are measured on it.
class MainQueue {
  public:
    virtual ~MainQueue() = default;
    virtual void async(std::function<void()> work) = 0;
    virtual void asyncAfter(double seconds, std::function<void()> work) = 0;
    virtual bool isMainThread() const = 0;
    virtual double now() const = 0;
};

}  // namespace ovix::platform
