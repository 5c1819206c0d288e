#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ovix/kit/Animation.h"

namespace ovix::kit {

class View;

/// The animations one `View::animate` call started, and its completion.
///
/// While the block runs the group is the current recorder: animatable setters report their old and
/// new values to it. The completion runs once: at delay + duration with finished = true, or as
/// soon as every animation of the group was removed with `removeAllAnimations` (finished = false).
/// Main thread only.
class AnimationGroup : public std::enable_shared_from_this<AnimationGroup> {
  public:
    AnimationGroup(double duration, double delay, AnimationOptions options,
                   std::function<void(bool)> completion);

    /// Runs `changes` with a new group recording, then schedules its completion.
    static void run(double duration, double delay, AnimationOptions options,
                    const std::function<void()>& changes, std::function<void(bool)> completion);
    /// Runs `changes` with recording switched off.
    static void runWithoutAnimation(const std::function<void()>& changes);
    /// The innermost recording group, or null outside animation blocks (and inside
    /// `runWithoutAnimation`).
    static std::shared_ptr<AnimationGroup> recording();

    double begin() const { return begin_; }
    double duration() const { return duration_; }
    AnimationCurve curve() const { return options_.curve; }

    /// A view started an animation for the group.
    void added(const std::shared_ptr<View>& view, const std::string& key);
    /// One of the group's animations ended early; `cancelled` when removed rather than replaced.
    void removed(bool cancelled);

  private:
    void finish();

    double duration_;
    double begin_ = 0;
    AnimationOptions options_;
    std::function<void(bool)> completion_;
    int live_ = 0;
    bool cancelled_ = false;
    bool done_ = false;
    std::vector<std::pair<std::weak_ptr<View>, std::string>> members_;
};

}  // namespace ovix::kit
