#include "ovix/kit/GestureRecognizer.h"

#include "ovix/kit/View.h"

namespace ovix::kit {

void GestureRecognizer::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (!enabled && (state_ == GestureRecognizerState::began || state_ == GestureRecognizerState::changed)) {
        setState(GestureRecognizerState::cancelled);
    }
}

Point GestureRecognizer::location(const View* in) const {
    return touch_.location(in);
}

void GestureRecognizer::touchBegan(const Touch& touch) {
    touch_ = touch;
}

void GestureRecognizer::touchCancelled(const Touch& touch) {
    touch_ = touch;
    if (state_ == GestureRecognizerState::began || state_ == GestureRecognizerState::changed) {
        setState(GestureRecognizerState::cancelled);
    } else {
        state_ = GestureRecognizerState::failed;
    }
}

void GestureRecognizer::reset() {
    state_ = GestureRecognizerState::possible;
}

void GestureRecognizer::setState(GestureRecognizerState state) {
    state_ = state;
    if (state == GestureRecognizerState::possible || state == GestureRecognizerState::failed) {
        return;
    }
    auto keep = shared_from_this();
    auto actions = actions_;
    for (auto& action : actions) {
        if (action) {
            action(*this);
        }
    }
}

}  // namespace ovix::kit
