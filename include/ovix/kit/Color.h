#pragma once

#include <ostream>

namespace ovix::kit {

/// An sRGB colour with components in 0...1. The named system colours have the fixed light-appearance
/// values of the platform the SDK mirrors.
class Color {
  public:
    constexpr Color() = default;
    constexpr Color(double red, double green, double blue, double alpha = 1)
        : red_(red), green_(green), blue_(blue), alpha_(alpha) {}

    /// Components given in 0...255, alpha in 0...1.
    static constexpr Color rgb255(double red, double green, double blue, double alpha = 1) {
        return {red / 255, green / 255, blue / 255, alpha};
    }
    static constexpr Color white(double level, double alpha) { return {level, level, level, alpha}; }

    static constexpr Color clear() { return {0, 0, 0, 0}; }
    static constexpr Color black() { return {0, 0, 0, 1}; }
    static constexpr Color white() { return {1, 1, 1, 1}; }
    static constexpr Color gray() { return {0.5, 0.5, 0.5, 1}; }
    static constexpr Color lightGray() { return {2.0 / 3, 2.0 / 3, 2.0 / 3, 1}; }
    static constexpr Color darkGray() { return {1.0 / 3, 1.0 / 3, 1.0 / 3, 1}; }
    static constexpr Color red() { return {1, 0, 0, 1}; }
    static constexpr Color green() { return {0, 1, 0, 1}; }
    static constexpr Color blue() { return {0, 0, 1, 1}; }
    static constexpr Color systemBlue() { return rgb255(0, 122, 255); }
    static constexpr Color systemRed() { return rgb255(255, 59, 48); }
    static constexpr Color systemGreen() { return rgb255(52, 199, 89); }
    static constexpr Color systemGray() { return rgb255(142, 142, 147); }
    static constexpr Color systemBackground() { return white(); }
    static constexpr Color label() { return black(); }
    static constexpr Color placeholderText() { return rgb255(60, 60, 67, 0.3); }
    static constexpr Color separator() { return rgb255(60, 60, 67, 0.29); }

    /// Components (the named constructors above take the plain names).
    constexpr double r() const { return red_; }
    constexpr double g() const { return green_; }
    constexpr double b() const { return blue_; }
    constexpr double a() const { return alpha_; }
    constexpr Color withAlphaComponent(double alpha) const { return {red_, green_, blue_, alpha}; }

    /// Component-wise linear blend: `t` = 0 gives this colour, 1 gives `to`.
    constexpr Color interpolated(const Color& to, double t) const {
        return {red_ + (to.red_ - red_) * t, green_ + (to.green_ - green_) * t,
                blue_ + (to.blue_ - blue_) * t, alpha_ + (to.alpha_ - alpha_) * t};
    }

    friend constexpr bool operator==(const Color&, const Color&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Color& c) {
        return out << "rgba(" << c.red_ << ", " << c.green_ << ", " << c.blue_ << ", " << c.alpha_ << ")";
    }

  private:
    double red_ = 0;
    double green_ = 0;
    double blue_ = 0;
    double alpha_ = 0;
};

}  // namespace ovix::kit
