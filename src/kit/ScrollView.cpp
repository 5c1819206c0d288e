#include "ovix/kit/ScrollView.h"

#include <algorithm>

namespace ovix::kit {

std::shared_ptr<ScrollView> ScrollView::create(Rect frame) {
    auto scroll = std::make_shared<ScrollView>(frame);
    scroll->setUpScrolling();
    return scroll;
}

ScrollView::ScrollView(Rect frame) : View(frame) {
    setClipsToBounds(true);
}

void ScrollView::setUpScrolling() {
    if (pan_) {
        return;
    }
    std::weak_ptr<ScrollView> weak = self<ScrollView>();
    pan_ = PanGestureRecognizer::create([weak](PanGestureRecognizer& pan) {
        auto scroll = weak.lock();
        if (!scroll || !scroll->scrollEnabled_) {
            return;
        }
        if (pan.state() == GestureRecognizerState::began) {
            scroll->panStartOffset_ = scroll->contentOffset();
        }
        // Dragging the content up moves the offset down.
        Point t = pan.translation(scroll.get());
        Point target{scroll->panStartOffset_.x - t.x, scroll->panStartOffset_.y - t.y};
        Point max = scroll->maximumContentOffset();
        target.x = std::clamp(target.x, -scroll->contentInset_.left, max.x);
        target.y = std::clamp(target.y, -scroll->contentInset_.top, max.y);
        scroll->setContentOffset(target);
    });
    addGestureRecognizer(pan_);
}

void ScrollView::setContentSize(Size size) {
    if (size != contentSize_) {
        contentSize_ = size;
    }
}

Point ScrollView::maximumContentOffset() const {
    Size b = bounds().size;
    return {std::max(-contentInset_.left, contentSize_.width + contentInset_.right - b.width),
            std::max(-contentInset_.top, contentSize_.height + contentInset_.bottom - b.height)};
}

void ScrollView::setContentOffset(Point offset, bool animated) {
    if (offset == contentOffset()) {
        return;
    }
    Rect target{offset, bounds().size};
    if (animated) {
        View::animate(0.3, [this, target] { setBounds(target); });
    } else {
        setBounds(target);
    }
    if (onScroll) {
        onScroll(*this);
    }
}

LayoutGuide& ScrollView::guide(std::shared_ptr<LayoutGuide>& slot, LayoutGuide::Kind kind) {
    if (!slot) {
        slot = std::make_shared<LayoutGuide>(kind);
        addLayoutGuide(slot);
    }
    return *slot;
}

LayoutGuide& ScrollView::contentLayoutGuide() {
    return guide(contentGuide_, LayoutGuide::Kind::scrollContent);
}
LayoutGuide& ScrollView::frameLayoutGuide() {
    return guide(frameGuide_, LayoutGuide::Kind::scrollFrame);
}

void ScrollView::contentLayoutGuideDidResolve(Size size) {
    setContentSize(size);
}

}  // namespace ovix::kit
