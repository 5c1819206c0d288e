#pragma once

#include <variant>

#include "ovix/kit/Color.h"
#include "ovix/kit/Geometry.h"

namespace ovix::kit {

enum class AnimationCurve { easeInOut, easeIn, easeOut, linear };

struct AnimationOptions {
    AnimationCurve curve = AnimationCurve::easeInOut;
};

/// A value a renderer interpolates between an animation's start and end.
using AnimatableValue = std::variant<double, Point, Rect, Color>;

/// Fraction of the way from start to end at `t` in 0...1 along `curve` (cubic timing as the classic
/// ease curves: control points 0.42/0.58).
double curveProgress(AnimationCurve curve, double t);

/// `from` blended towards `to` by `fraction` (both must hold the same kind of value; otherwise `to`).
AnimatableValue interpolate(const AnimatableValue& from, const AnimatableValue& to, double fraction);

}  // namespace ovix::kit
