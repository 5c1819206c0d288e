#include "platform/posix/ThreadMainQueue.h"

#include <algorithm>

namespace ovix::platform {

ThreadMainQueue::ThreadMainQueue() : thread_([this] { loop(); }) {}

ThreadMainQueue::~ThreadMainQueue() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        if (thread_.get_id() == std::this_thread::get_id()) {
            thread_.detach();
        } else {
            thread_.join();
        }
    }
}

void ThreadMainQueue::async(std::function<void()> work) {
    asyncAfter(0, std::move(work));
}

void ThreadMainQueue::asyncAfter(double seconds, std::function<void()> work) {
    auto delay =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(std::max(0.0, seconds)));
    {
        std::lock_guard lock(mutex_);
        items_.emplace(std::make_pair(Clock::now() + delay, sequence_++), std::move(work));
    }
    wake_.notify_all();
}

bool ThreadMainQueue::isMainThread() const {
    return std::this_thread::get_id() == thread_.get_id();
}

double ThreadMainQueue::now() const {
    return std::chrono::duration<double>(Clock::now() - start_).count();
}

void ThreadMainQueue::loop() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        if (items_.empty()) {
            wake_.wait(lock);
            continue;
        }
        auto first = items_.begin();
        if (first->first.first > Clock::now()) {
            wake_.wait_until(lock, first->first.first);
            continue;
        }
        auto work = std::move(first->second);
        items_.erase(first);
        lock.unlock();
        work();
        lock.lock();
    }
}

}  // namespace ovix::platform
