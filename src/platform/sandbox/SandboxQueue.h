#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace ovix::platform {

/// The sandbox store's delivery thread: runs posted work in due order, each item after its delay.
///
/// Threading: `post` from any thread; work runs on the queue's own thread only, never inline. The
/// thread starts with the first post (or `threadId` call), so an unused queue costs no thread.
/// Destruction delivers every item still waiting at once (delays are cut short), then ends the thread;
/// it may happen on the queue's own thread (the last owner released by a completion).
class SandboxQueue {
  public:
    SandboxQueue();
    ~SandboxQueue();
    SandboxQueue(const SandboxQueue&) = delete;
    SandboxQueue& operator=(const SandboxQueue&) = delete;

    /// Runs `work` `delaySeconds` (real time) from now; items due at the same time run in post order.
    void post(double delaySeconds, std::function<void()> work);
    std::thread::id threadId();

  private:
    struct State;

    std::shared_ptr<State> state_;
    std::once_flag started_;
    std::thread thread_;
};

}  // namespace ovix::platform
