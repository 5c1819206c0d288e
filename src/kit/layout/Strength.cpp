#include "kit/layout/Strength.h"

#include <algorithm>
#include <cmath>

namespace ovix::kit::layout::strength {

namespace {
constexpr double kLevel = 1000.0;
}  // namespace

double clip(double value) {
    return std::clamp(value, 0.0, required);
}

double fromPriority(double priority) {
    if (priority >= 1000) {
        return required;
    }
    return create(0, std::max(priority, 0.0), 0);
}

Levels levels(double value) {
    value = clip(value);
    // Integral weights decode exactly; fractional ones spill their remainder into the next level,
    // which keeps the lexicographic order of the packed values.
    double a = std::min(std::floor(value / (kLevel * kLevel)), kLevel);
    value -= a * kLevel * kLevel;
    double b = std::min(std::floor(value / kLevel), kLevel);
    value -= b * kLevel;
    return Levels{a, b, value};
}

}  // namespace ovix::kit::layout::strength
