#pragma once

#include <functional>
#include <memory>

#include "ovix/kit/PanGestureRecognizer.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

/// A view whose content is larger than itself: the content offset is the bounds origin.
///
/// The content size is set directly, or solved from constraints to `contentLayoutGuide` (its edges
/// are the content's; its size becomes `contentSize`). `frameLayoutGuide` is the scroll view's own
/// rectangle, for content that must not scroll (a width equal to the frame for vertical-only
/// scrolling). Subviews are laid out in content coordinates. Dragging scrolls (its own pan
/// recognizer), kept within the content when `isScrollEnabled`. Clips to its bounds by default.
class ScrollView : public View {
  public:
    static std::shared_ptr<ScrollView> create(Rect frame = {});
    explicit ScrollView(Rect frame = {});

    Size contentSize() const { return contentSize_; }
    void setContentSize(Size size);
    Point contentOffset() const { return bounds().origin; }
    void setContentOffset(Point offset, bool animated = false);
    EdgeInsets contentInset() const { return contentInset_; }
    void setContentInset(EdgeInsets insets) { contentInset_ = insets; }
    /// The largest offset the content allows (never negative).
    Point maximumContentOffset() const;

    bool isScrollEnabled() const { return scrollEnabled_; }
    virtual void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }
    bool showsHorizontalScrollIndicator() const { return showsHorizontal_; }
    void setShowsHorizontalScrollIndicator(bool shows) { showsHorizontal_ = shows; }
    bool showsVerticalScrollIndicator() const { return showsVertical_; }
    void setShowsVerticalScrollIndicator(bool shows) { showsVertical_ = shows; }
    bool alwaysBounceVertical() const { return bounceVertical_; }
    void setAlwaysBounceVertical(bool value) { bounceVertical_ = value; }

    LayoutGuide& contentLayoutGuide();
    LayoutGuide& frameLayoutGuide();
    const std::shared_ptr<PanGestureRecognizer>& panGestureRecognizer() const { return pan_; }

    /// Called after the content offset changed.
    std::function<void(ScrollView&)> onScroll;

    std::string className() const override { return "ScrollView"; }

  protected:
    /// Makes the scroll pan recognizer; subclasses' `create` must call it after construction.
    void setUpScrolling();
    void contentLayoutGuideDidResolve(Size size) override;

  private:
    LayoutGuide& guide(std::shared_ptr<LayoutGuide>& slot, LayoutGuide::Kind kind);

    Size contentSize_;
    EdgeInsets contentInset_;
    bool scrollEnabled_ = true;
    bool showsHorizontal_ = true;
    bool showsVertical_ = true;
    bool bounceVertical_ = false;
    std::shared_ptr<LayoutGuide> contentGuide_;
    std::shared_ptr<LayoutGuide> frameGuide_;
    std::shared_ptr<PanGestureRecognizer> pan_;
    Point panStartOffset_;
};

}  // namespace ovix::kit
