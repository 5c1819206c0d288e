#pragma once

#include <algorithm>

namespace ovix::kit::layout::strength {

/// Strengths are symbolic: three levels (strong, medium, weak) compared lexicographically, each with
/// a weight of 0...1000, packed into one double as a*1e6 + b*1e3 + c. Within a level weights trade
/// off linearly; any amount of error at a lower level is preferred to any error at a higher one.
/// `required` is above every packed strength and means "must hold exactly".
constexpr double create(double a, double b, double c, double w = 1) {
    constexpr double level = 1000.0;
    return std::clamp(a * w, 0.0, level) * level * level + std::clamp(b * w, 0.0, level) * level +
           std::clamp(c * w, 0.0, level);
}

inline constexpr double required = create(1000, 1000, 1000);
inline constexpr double strong = create(1, 0, 0);
inline constexpr double medium = create(0, 1, 0);
inline constexpr double weak = create(0, 0, 1);

/// Clamps a strength to 0...required.
double clip(double value);

/// A UI priority (1...1000). 1000 is required; anything lower lands in the medium level with the
/// priority as its weight, so 999 > 750 > 250 > 1 and all stay below `strong` (edit suggestions).
double fromPriority(double priority);

/// The three level weights of a non-required strength, strongest level first.
struct Levels {
    double strong = 0;
    double medium = 0;
    double weak = 0;
};
Levels levels(double strength);

}  // namespace ovix::kit::layout::strength
