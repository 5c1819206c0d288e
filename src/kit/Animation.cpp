#include "ovix/kit/Animation.h"

#include <algorithm>
#include <cmath>

namespace ovix::kit {

namespace {

/// A cubic timing curve through (0,0), (x1,y1), (x2,y2), (1,1): y at the given x.
double cubicTiming(double x1, double y1, double x2, double y2, double x) {
    auto bezier = [](double a, double b, double s) {
        double u = 1 - s;
        return 3 * u * u * s * a + 3 * u * s * s * b + s * s * s;
    };
    // x(s) is monotonic on 0...1: bisect for the parameter, then read y.
    double lo = 0;
    double hi = 1;
    for (int i = 0; i < 60; ++i) {
        double mid = (lo + hi) / 2;
        (bezier(x1, x2, mid) < x ? lo : hi) = mid;
    }
    return bezier(y1, y2, (lo + hi) / 2);
}

}  // namespace

double curveProgress(AnimationCurve curve, double t) {
    t = std::clamp(t, 0.0, 1.0);
    if (t == 0 || t == 1) {
        return t;
    }
    switch (curve) {
        case AnimationCurve::linear:
            return t;
        case AnimationCurve::easeIn:
            return cubicTiming(0.42, 0, 1, 1, t);
        case AnimationCurve::easeOut:
            return cubicTiming(0, 0, 0.58, 1, t);
        case AnimationCurve::easeInOut:
            break;
    }
    return cubicTiming(0.42, 0, 0.58, 1, t);
}

AnimatableValue interpolate(const AnimatableValue& from, const AnimatableValue& to, double f) {
    auto mix = [f](double a, double b) { return a + (b - a) * f; };
    if (from.index() != to.index()) {
        return to;
    }
    if (auto* a = std::get_if<double>(&from)) {
        return mix(*a, std::get<double>(to));
    }
    if (auto* a = std::get_if<Point>(&from)) {
        const auto& b = std::get<Point>(to);
        return Point{mix(a->x, b.x), mix(a->y, b.y)};
    }
    if (auto* a = std::get_if<Rect>(&from)) {
        const auto& b = std::get<Rect>(to);
        return Rect{mix(a->origin.x, b.origin.x), mix(a->origin.y, b.origin.y),
                    mix(a->size.width, b.size.width), mix(a->size.height, b.size.height)};
    }
    return std::get<Color>(from).interpolated(std::get<Color>(to), f);
}

}  // namespace ovix::kit
