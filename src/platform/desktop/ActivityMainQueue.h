#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "ovix/platform/MainQueue.h"

namespace ovix::platform::desktop {

/// A main queue that tells its host when the SDK's state may have changed, so that a host which
/// paints on demand repaints only then: after each work item has run, the activity listener is
/// called (on the main thread). Short delayed work (an animation's completion, a brief timer) also
/// extends `busyUntil`, the moment until which the host keeps redrawing every frame.
///
/// Work, order and threads are the wrapped queue's. `async`/`asyncAfter` from any thread;
/// `setActivityListener` and the listener itself on the main thread.
class ActivityMainQueue : public MainQueue {
  public:
    /// Delayed work further out than this is a timer, not something that moves on screen.
    static constexpr double shortDelay = 2.0;

    explicit ActivityMainQueue(std::shared_ptr<MainQueue> inner);

    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override { return inner_->isMainThread(); }
    double now() const override { return inner_->now(); }

    void setActivityListener(std::function<void()> listener);
    /// The latest due time (`now` clock) of short delayed work posted so far.
    double busyUntil() const { return state_->busyUntil.load(); }

  private:
    struct State {
        std::atomic<double> busyUntil{0};
        std::function<void()> listener;  // main thread only
    };
    std::function<void()> wrap(std::function<void()> work) const;

    std::shared_ptr<MainQueue> inner_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace ovix::platform::desktop
