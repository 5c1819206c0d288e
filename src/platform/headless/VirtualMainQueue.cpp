#include "ovix/testing/VirtualMainQueue.h"

#include <algorithm>

namespace ovix::testing {

VirtualMainQueue::VirtualMainQueue() : mainThread_(std::this_thread::get_id()) {}

void VirtualMainQueue::async(std::function<void()> work) {
    asyncAfter(0, std::move(work));
}

void VirtualMainQueue::asyncAfter(double seconds, std::function<void()> work) {
    {
        std::lock_guard lock(mutex_);
        double due = now_ + std::max(0.0, seconds);
        items_.emplace(std::make_pair(due, sequence_++), std::move(work));
    }
    posted_.notify_all();
}

bool VirtualMainQueue::isMainThread() const {
    std::lock_guard lock(mutex_);
    return std::this_thread::get_id() == mainThread_;
}

double VirtualMainQueue::now() const {
    std::lock_guard lock(mutex_);
    return now_;
}

bool VirtualMainQueue::runOneDue() {
    std::function<void()> work;
    {
        std::lock_guard lock(mutex_);
        auto first = items_.begin();
        if (first == items_.end() || first->first.first > now_) {
            return false;
        }
        work = std::move(first->second);
        items_.erase(first);
    }
    // Run outside the lock: work may post more work.
    work();
    return true;
}

std::size_t VirtualMainQueue::runUntilIdle() {
    std::size_t ran = 0;
    while (runOneDue()) {
        ++ran;
    }
    return ran;
}

void VirtualMainQueue::advance(double seconds) {
    double target;
    {
        std::lock_guard lock(mutex_);
        target = now_ + std::max(0.0, seconds);
    }
    for (;;) {
        runUntilIdle();
        std::lock_guard lock(mutex_);
        auto first = items_.begin();
        if (first == items_.end() || first->first.first > target) {
            now_ = target;
            break;
        }
        now_ = first->first.first;
    }
    runUntilIdle();
}

bool VirtualMainQueue::runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
    auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        runUntilIdle();
        if (done()) {
            return true;
        }
        std::unique_lock lock(mutex_);
        bool due = !items_.empty() && items_.begin()->first.first <= now_;
        if (!due) {
            // Wake on new work, and poll now and then for conditions that other threads satisfy
            // without posting anything.
            auto wake = std::min(deadline, std::chrono::steady_clock::now() + std::chrono::milliseconds(5));
            posted_.wait_until(lock, wake);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            lock.unlock();
            runUntilIdle();
            return done();
        }
    }
}

std::size_t VirtualMainQueue::pendingCount() const {
    std::lock_guard lock(mutex_);
    return items_.size();
}

void VirtualMainQueue::adoptCurrentThread() {
    std::lock_guard lock(mutex_);
    mainThread_ = std::this_thread::get_id();
}

}  // namespace ovix::testing
