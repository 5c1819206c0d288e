#include "platform/desktop/ActivityMainQueue.h"

namespace ovix::platform::desktop {

ActivityMainQueue::ActivityMainQueue(std::shared_ptr<MainQueue> inner) : inner_(std::move(inner)) {}

std::function<void()> ActivityMainQueue::wrap(std::function<void()> work) const {
    // The state, not the queue: work may still run after a replaced platform let the queue go.
    return [state = state_, work = std::move(work)] {
        work();
        if (state->listener) {
            auto listener = state->listener;  // the listener may replace itself
            listener();
        }
    };
}

void ActivityMainQueue::async(std::function<void()> work) {
    inner_->async(wrap(std::move(work)));
}

void ActivityMainQueue::asyncAfter(double seconds, std::function<void()> work) {
    if (seconds <= shortDelay) {
        const double due = inner_->now() + seconds;
        double seen = state_->busyUntil.load();
        while (seen < due && !state_->busyUntil.compare_exchange_weak(seen, due)) {
        }
    }
    inner_->asyncAfter(seconds, wrap(std::move(work)));
}

void ActivityMainQueue::setActivityListener(std::function<void()> listener) {
    state_->listener = std::move(listener);
}

}  // namespace ovix::platform::desktop
