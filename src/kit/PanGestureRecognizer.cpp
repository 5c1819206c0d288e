#include "ovix/kit/PanGestureRecognizer.h"

#include <cmath>

#include "ovix/kit/View.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

std::shared_ptr<PanGestureRecognizer> PanGestureRecognizer::create(
    std::function<void(PanGestureRecognizer&)> action) {
    auto recognizer = std::make_shared<PanGestureRecognizer>();
    if (action) {
        recognizer->addTarget([action = std::move(action)](GestureRecognizer& g) {
            action(static_cast<PanGestureRecognizer&>(g));
        });
    }
    return recognizer;
}

Point PanGestureRecognizer::translation(const View*) const {
    return touch_.windowLocation - origin_;
}

void PanGestureRecognizer::setTranslation(Point translation, const View*) {
    origin_ = touch_.windowLocation - translation;
}

Point PanGestureRecognizer::velocity(const View*) const {
    return velocity_;
}

void PanGestureRecognizer::touchBegan(const Touch& touch) {
    GestureRecognizer::touchBegan(touch);
    previous_ = touch.windowLocation;
    previousTime_ = platform::current()->mainQueue->now();
    velocity_ = {};
}

void PanGestureRecognizer::touchMoved(const Touch& touch) {
    touch_ = touch;
    double now = platform::current()->mainQueue->now();
    double dt = now - previousTime_;
    velocity_ = dt > 0 ? Point{(touch.windowLocation.x - previous_.x) / dt,
                               (touch.windowLocation.y - previous_.y) / dt}
                       : Point{};
    previous_ = touch.windowLocation;
    previousTime_ = now;
    switch (state()) {
        case GestureRecognizerState::possible:
            if (distance(touch.windowLocation, touch.startLocation) >= hysteresis) {
                origin_ = touch.startLocation;
                setState(GestureRecognizerState::began);
            }
            break;
        case GestureRecognizerState::began:
        case GestureRecognizerState::changed:
            setState(GestureRecognizerState::changed);
            break;
        default:
            break;
    }
}

void PanGestureRecognizer::touchEnded(const Touch& touch) {
    touch_ = touch;
    if (state() == GestureRecognizerState::began || state() == GestureRecognizerState::changed) {
        setState(GestureRecognizerState::ended);
    } else if (state() == GestureRecognizerState::possible) {
        fail();
    }
}

void PanGestureRecognizer::reset() {
    GestureRecognizer::reset();
    origin_ = {};
    velocity_ = {};
}

}  // namespace ovix::kit
