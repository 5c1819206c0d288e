#include "ovix/desktop/OverlayInput.h"

#include <algorithm>

#include "ovix/kit/Control.h"
#include "ovix/kit/GestureRecognizer.h"
#include "ovix/kit/ScrollView.h"

namespace ovix::desktop {

namespace {

/// Whether a press on `view` is the overlay's: something the player can operate or sees painted.
bool takesPress(const kit::View& view) {
    if (dynamic_cast<const kit::Control*>(&view)) {
        return true;
    }
    for (const auto& recognizer : view.gestureRecognizers()) {
        if (recognizer->isEnabled()) {
            return true;
        }
    }
    if (const auto& background = view.backgroundColor(); background && background->a() > 0) {
        return true;
    }
    return false;
}

/// Whether `scroll` can move at all along an axis of the delta.
bool canScroll(const kit::ScrollView& scroll, double dx, double dy) {
    if (!scroll.isScrollEnabled()) {
        return false;
    }
    const kit::Point max = scroll.maximumContentOffset();
    const auto inset = scroll.contentInset();
    return (dx != 0 && max.x > -inset.left) || (dy != 0 && max.y > -inset.top);
}

}  // namespace

OverlayInput::OverlayInput(std::shared_ptr<kit::Window> window) : window_(std::move(window)) {}

std::shared_ptr<kit::View> OverlayInput::interactiveViewAt(kit::Point location) {
    window_->layoutIfNeeded();
    auto hit = window_->hitTest(location);
    for (auto view = hit; view; view = view->superview()) {
        if (takesPress(*view)) {
            return hit;
        }
    }
    return nullptr;
}

bool OverlayInput::takesPointerAt(kit::Point location) {
    return owner_ == Owner::overlay || (owner_ == Owner::none && interactiveViewAt(location) != nullptr);
}

bool OverlayInput::pointerPress(kit::Point location, PointerButton button) {
    if (owner_ != Owner::none) {
        return owner_ == Owner::overlay;  // another button during a press: same owner
    }
    pressedButton_ = button;
    if (!interactiveViewAt(location)) {
        owner_ = Owner::game;
        if (auto responder = window_->firstResponder()) {
            responder->resignFirstResponder();
        }
        return false;
    }
    owner_ = Owner::overlay;
    touching_ = button == PointerButton::primary;
    if (touching_) {
        window_->touchDown(location);
    }
    return true;
}

bool OverlayInput::pointerMove(kit::Point location) {
    if (owner_ != Owner::overlay) {
        return false;
    }
    if (touching_) {
        window_->touchMove(location);
    }
    return true;
}

bool OverlayInput::pointerRelease(kit::Point location, PointerButton button) {
    if (owner_ == Owner::none) {
        return false;
    }
    const bool overlay = owner_ == Owner::overlay;
    if (button != pressedButton_) {
        return overlay;  // the press goes on until its own button lifts
    }
    owner_ = Owner::none;
    if (touching_) {
        touching_ = false;
        window_->touchUp(location);
    }
    return overlay;
}

void OverlayInput::pointerCancel() {
    if (touching_) {
        window_->touchCancel();
    }
    touching_ = false;
    owner_ = Owner::none;
}

bool OverlayInput::scroll(kit::Point location, double dx, double dy, ScrollUnit unit) {
    if (owner_ == Owner::game) {
        return false;
    }
    auto hit = interactiveViewAt(location);
    if (!hit) {
        return false;
    }
    if (unit == ScrollUnit::notches) {
        dx *= pointsPerNotch;
        dy *= pointsPerNotch;
    }
    for (auto view = hit; view; view = view->superview()) {
        auto* scroll = dynamic_cast<kit::ScrollView*>(view.get());
        if (!scroll || !canScroll(*scroll, dx, dy)) {
            continue;  // an outer scroll view may still move
        }
        const kit::Point max = scroll->maximumContentOffset();
        const auto inset = scroll->contentInset();
        const kit::Point offset = scroll->contentOffset();
        scroll->setContentOffset(
            {std::clamp(offset.x + dx, -inset.left, max.x), std::clamp(offset.y + dy, -inset.top, max.y)});
        break;
    }
    return true;
}

bool OverlayInput::key(kit::Key key, kit::KeyModifiers modifiers) {
    return window_->keyDown(key, modifiers);
}

bool OverlayInput::text(std::string_view text) {
    if (!window_->firstResponder()) {
        return false;
    }
    window_->insertText(text);
    return true;
}

}  // namespace ovix::desktop
