#include "ovix/kit/ProgressView.h"

#include <algorithm>

#include "kit/AnimationGroup.h"

namespace ovix::kit {

std::shared_ptr<ProgressView> ProgressView::create(ProgressViewStyle style) {
    return std::make_shared<ProgressView>(style);
}

ProgressView::ProgressView(ProgressViewStyle style) : View(Rect{0, 0, 0, barHeight}), style_(style) {}

void ProgressView::setProgress(double progress, bool animated) {
    progress = std::clamp(progress, 0.0, 1.0);
    if (progress == progress_) {
        return;
    }
    if (!animated) {
        progress_ = progress;
        return;
    }
    auto apply = [this, progress] {
        recordAnimatableChange("progress", progress_, progress);
        progress_ = progress;
    };
    if (AnimationGroup::recording()) {
        apply();
    } else {
        View::animate(defaultAnimationDuration, apply);
    }
}

double ProgressView::presentationProgress(double time) const {
    auto value = presentationValue("progress", time);
    return value ? std::get<double>(*value) : progress_;
}

}  // namespace ovix::kit
