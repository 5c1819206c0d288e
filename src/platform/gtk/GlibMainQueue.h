#pragma once

#include <functional>
#include <thread>

#include "ovix/platform/MainQueue.h"

namespace ovix::platform::gtk {

/// The main queue of a GTK process: work runs from the default GLib main context, on the thread
/// that created the queue (create it on the thread that initialised GTK and runs its main loop).
///
/// `async` and `asyncAfter` may be called from any thread; work never runs inline and, for equal
/// due times, runs in the order it was posted. Work is only run while that thread iterates the
/// default main context (`g_main_loop_run`, `g_application_run`, ...). `now` is GLib's monotonic
/// clock in seconds since the queue was created.
class GlibMainQueue : public MainQueue {
  public:
    GlibMainQueue();

    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    bool isMainThread() const override;
    double now() const override;

  private:
    std::thread::id mainThread_;
    long long start_;
};

}  // namespace ovix::platform::gtk
