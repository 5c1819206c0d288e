#pragma once

#include <memory>

#include "ovix/kit/Geometry.h"

namespace ovix::kit {

enum class DeviceOrientation {
    unknown,
    portrait,
    portraitUpsideDown,
    landscapeLeft,
    landscapeRight,
    faceUp,
    faceDown
};

inline bool isLandscape(DeviceOrientation o) {
    return o == DeviceOrientation::landscapeLeft || o == DeviceOrientation::landscapeRight;
}

/// A display: its bounds in points (width and height swap in landscape) and its scale.
/// The host changes the orientation; readers are on the main thread.
class Screen {
  public:
    /// `portraitSize` in points, `scale` pixels per point.
    Screen(Size portraitSize, double scale) : portraitSize_(portraitSize), scale_(scale) {}

    /// The application's main screen (`platform::current()->application->mainScreen()`).
    static std::shared_ptr<Screen> main();

    Rect bounds() const;
    double scale() const { return scale_; }
    /// The portrait bounds in pixels.
    Rect nativeBounds() const { return {0, 0, portraitSize_.width * scale_, portraitSize_.height * scale_}; }
    DeviceOrientation orientation() const { return orientation_; }
    /// Host side: the device turned. Landscape swaps the bounds' width and height.
    void setOrientation(DeviceOrientation orientation) { orientation_ = orientation; }

  private:
    Size portraitSize_;
    double scale_;
    DeviceOrientation orientation_ = DeviceOrientation::portrait;
};

}  // namespace ovix::kit
