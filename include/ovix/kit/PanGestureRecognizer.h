#pragma once

#include <functional>
#include <memory>

#include "ovix/kit/GestureRecognizer.h"

namespace ovix::kit {

/// Recognises a drag: begins once the touch has moved `hysteresis` points from where it began,
/// then reports `changed` on every move and `ended` when lifted (`cancelled` when the touch is).
/// `location` is the current touch; `translation` is measured from where the touch began.
class PanGestureRecognizer : public GestureRecognizer {
  public:
    static constexpr double hysteresis = 10;

    static std::shared_ptr<PanGestureRecognizer> create(
        std::function<void(PanGestureRecognizer&)> action = {});

    /// Movement since the touch began (or since the last `setTranslation`), in `view`'s coordinate
    /// scale (views here are not transformed, so the same in every view).
    Point translation(const View* in) const;
    void setTranslation(Point translation, const View* in);
    /// Points per second between the last two moves, on the main queue's clock; zero when no time
    /// passed between them.
    Point velocity(const View* in) const;

    void touchBegan(const Touch& touch) override;
    void touchMoved(const Touch& touch) override;
    void touchEnded(const Touch& touch) override;
    void reset() override;

    PanGestureRecognizer() = default;

  private:
    Point origin_;
    Point previous_;
    double previousTime_ = 0;
    Point velocity_;
};

}  // namespace ovix::kit
