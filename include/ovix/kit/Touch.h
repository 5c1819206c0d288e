#pragma once

#include <memory>

#include "ovix/kit/Geometry.h"

namespace ovix::kit {

class View;
class Window;

enum class TouchPhase { began, moved, ended, cancelled };

/// One finger's contact, as the window routes it. Locations are kept in window coordinates.
struct Touch {
    Point windowLocation;
    TouchPhase phase = TouchPhase::began;
    /// Where the touch began, in window coordinates.
    Point startLocation;
    /// The view the touch began on (the hit-test result then).
    std::weak_ptr<View> view;
    std::weak_ptr<Window> window;

    /// The location in `view`'s coordinates; in window coordinates when `view` is null.
    Point location(const View* in) const;
};

}  // namespace ovix::kit
