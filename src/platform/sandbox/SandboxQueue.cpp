#include "platform/sandbox/SandboxQueue.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

namespace ovix::platform {

using Clock = std::chrono::steady_clock;

// Shared with the thread itself, so that the thread can outlive the queue object when the queue is
// destroyed from one of its own completions.
struct SandboxQueue::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::multimap<std::pair<Clock::time_point, std::uint64_t>, std::function<void()>> items;
    std::uint64_t sequence = 0;
    bool stopping = false;

    void run() {
        std::unique_lock lock(mutex);
        for (;;) {
            if (items.empty()) {
                if (stopping) {
                    return;
                }
                changed.wait(lock);
                continue;
            }
            auto first = items.begin();
            if (!stopping && first->first.first > Clock::now()) {
                changed.wait_until(lock, first->first.first);
                continue;
            }
            auto work = std::move(first->second);
            items.erase(first);
            lock.unlock();
            work();
            // Released outside the lock: it may hold the last owner of the queue.
            work = nullptr;
            lock.lock();
        }
    }
};

SandboxQueue::SandboxQueue() : state_(std::make_shared<State>()) {}

std::thread::id SandboxQueue::threadId() {
    std::call_once(started_, [this] { thread_ = std::thread([state = state_] { state->run(); }); });
    return thread_.get_id();
}

SandboxQueue::~SandboxQueue() {
    {
        std::lock_guard lock(state_->mutex);
        state_->stopping = true;
    }
    state_->changed.notify_all();
    if (!thread_.joinable()) {
        return;  // never started
    }
    if (std::this_thread::get_id() == thread_.get_id()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

void SandboxQueue::post(double delaySeconds, std::function<void()> work) {
    threadId();
    auto due = Clock::now() +
               std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(delaySeconds));
    {
        std::lock_guard lock(state_->mutex);
        state_->items.emplace(std::make_pair(due, state_->sequence++), std::move(work));
    }
    state_->changed.notify_all();
}

}  // namespace ovix::platform
