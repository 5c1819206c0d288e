#include "ovix/kit/TapGestureRecognizer.h"

#include <cmath>

#include "ovix/kit/View.h"

namespace ovix::kit {

namespace {

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

std::shared_ptr<TapGestureRecognizer> TapGestureRecognizer::create(
    std::function<void(TapGestureRecognizer&)> action) {
    auto recognizer = std::make_shared<TapGestureRecognizer>();
    if (action) {
        recognizer->addTarget([action = std::move(action)](GestureRecognizer& g) {
            action(static_cast<TapGestureRecognizer&>(g));
        });
    }
    return recognizer;
}

void TapGestureRecognizer::touchMoved(const Touch& touch) {
    touch_ = touch;
    if (state() == GestureRecognizerState::possible &&
        distance(touch.windowLocation, touch.startLocation) > allowableMovement) {
        fail();
    }
}

void TapGestureRecognizer::touchEnded(const Touch& touch) {
    touch_ = touch;
    if (state() == GestureRecognizerState::possible) {
        setState(GestureRecognizerState::ended);
    }
}

}  // namespace ovix::kit
