#pragma once

#include <memory>
#include <optional>

#include "ovix/kit/View.h"

namespace ovix::kit {

enum class ProgressViewStyle { defaultStyle, bar };

/// A bar filled to `progress` (0...1). `setProgress(value, true)` animates the fill: inside an
/// animation block with that block's timing, otherwise over `defaultAnimationDuration`; the model
/// value changes at once and `presentationProgress` gives the fill to draw. Removing the layer's
/// animations shows the model value at once. Its intrinsic height is `barHeight`.
class ProgressView : public View {
  public:
    static constexpr double barHeight = 4;
    static constexpr double defaultAnimationDuration = 0.25;

    static std::shared_ptr<ProgressView> create(ProgressViewStyle style = ProgressViewStyle::defaultStyle);
    explicit ProgressView(ProgressViewStyle style = ProgressViewStyle::defaultStyle);

    ProgressViewStyle progressViewStyle() const { return style_; }
    double progress() const { return progress_; }
    /// Clamped to 0...1.
    void setProgress(double progress, bool animated = false);
    /// The fill to draw at main-queue time `time`.
    double presentationProgress(double time) const;
    std::optional<Color> progressTintColor() const { return progressTint_; }
    void setProgressTintColor(std::optional<Color> color) { progressTint_ = color; }
    std::optional<Color> trackTintColor() const { return trackTint_; }
    void setTrackTintColor(std::optional<Color> color) { trackTint_ = color; }

    Size intrinsicContentSize() const override { return {noIntrinsicMetric, barHeight}; }
    std::string className() const override { return "ProgressView"; }

  private:
    ProgressViewStyle style_;
    double progress_ = 0;
    std::optional<Color> progressTint_;
    std::optional<Color> trackTint_;
};

}  // namespace ovix::kit
