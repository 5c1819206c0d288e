#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/Color.h"
#include "ovix/kit/Geometry.h"

namespace ovix::kit {

class View;

/// The drawing properties of a view that the classic model keeps on its backing layer: corners,
/// border, shadow, clipping, and the view's running animations. Part of its view; never copied.
class Layer {
  public:
    explicit Layer(View& owner) : owner_(owner) {}
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    double cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(double radius) { cornerRadius_ = radius; }
    double borderWidth() const { return borderWidth_; }
    void setBorderWidth(double width) { borderWidth_ = width; }
    /// Opaque black by default, as the classic layer's.
    Color borderColor() const { return borderColor_; }
    void setBorderColor(Color color) { borderColor_ = color; }
    std::optional<Color> shadowColor() const { return shadowColor_; }
    void setShadowColor(std::optional<Color> color) { shadowColor_ = color; }
    double shadowOpacity() const { return shadowOpacity_; }
    void setShadowOpacity(double opacity) { shadowOpacity_ = opacity; }
    Size shadowOffset() const { return shadowOffset_; }
    void setShadowOffset(Size offset) { shadowOffset_ = offset; }
    double shadowRadius() const { return shadowRadius_; }
    void setShadowRadius(double radius) { shadowRadius_ = radius; }
    /// The view's `clipsToBounds`.
    bool masksToBounds() const;
    void setMasksToBounds(bool masks);

    /// Keys of the view's animations in flight ("center", "bounds", "alpha", ...), sorted.
    std::vector<std::string> animationKeys() const;
    /// Ends the view's animations at once (the model already holds the end values); their
    /// completions are posted with finished = false.
    void removeAllAnimations();

  private:
    View& owner_;
    double cornerRadius_ = 0;
    double borderWidth_ = 0;
    Color borderColor_ = Color::black();
    std::optional<Color> shadowColor_ = Color::black();
    double shadowOpacity_ = 0;
    Size shadowOffset_{0, -3};
    double shadowRadius_ = 3;
};

}  // namespace ovix::kit
