#include "kit/AnimationGroup.h"

#include "ovix/kit/View.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

/// Innermost last; a null entry switches recording off.
std::vector<std::shared_ptr<AnimationGroup>>& stack() {
    static std::vector<std::shared_ptr<AnimationGroup>> groups;
    return groups;
}

struct StackEntry {
    explicit StackEntry(std::shared_ptr<AnimationGroup> group) { stack().push_back(std::move(group)); }
    ~StackEntry() { stack().pop_back(); }
    StackEntry(const StackEntry&) = delete;
    StackEntry& operator=(const StackEntry&) = delete;
};

}  // namespace

AnimationGroup::AnimationGroup(double duration, double delay, AnimationOptions options,
                               std::function<void(bool)> completion)
    : duration_(duration),
      begin_(platform::current()->mainQueue->now() + delay),
      options_(options),
      completion_(std::move(completion)) {}

void AnimationGroup::run(double duration, double delay, AnimationOptions options,
                         const std::function<void()>& changes, std::function<void(bool)> completion) {
    duration = std::max(duration, 0.0);
    delay = std::max(delay, 0.0);
    auto group = std::make_shared<AnimationGroup>(duration, delay, options, std::move(completion));
    if (changes) {
        // A zero-length animation changes the model only; nothing to interpolate.
        StackEntry entry(duration > 0 ? group : nullptr);
        changes();
    }
    platform::current()->mainQueue->asyncAfter(delay + duration, [group] { group->finish(); });
}

void AnimationGroup::runWithoutAnimation(const std::function<void()>& changes) {
    StackEntry entry(nullptr);
    if (changes) {
        changes();
    }
}

std::shared_ptr<AnimationGroup> AnimationGroup::recording() {
    return stack().empty() ? nullptr : stack().back();
}

void AnimationGroup::added(const std::shared_ptr<View>& view, const std::string& key) {
    ++live_;
    members_.emplace_back(view, key);
}

void AnimationGroup::removed(bool cancelled) {
    --live_;
    cancelled_ = cancelled_ || cancelled;
    if (live_ == 0 && cancelled_ && !done_) {
        done_ = true;
        if (completion_) {
            platform::current()->mainQueue->async(
                [completion = std::move(completion_)] { completion(false); });
        }
    }
}

void AnimationGroup::finish() {
    if (done_) {
        return;
    }
    done_ = true;
    auto self = shared_from_this();
    for (auto& [weakView, key] : members_) {
        if (auto view = weakView.lock()) {
            view->removeFinishedAnimation(key, this);
        }
    }
    members_.clear();
    if (completion_) {
        auto completion = std::move(completion_);
        completion(!cancelled_);
    }
}

}  // namespace ovix::kit
