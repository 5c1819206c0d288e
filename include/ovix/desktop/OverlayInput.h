#pragma once

#include <memory>
#include <string_view>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/Key.h"
#include "ovix/kit/Window.h"

namespace ovix::desktop {

enum class PointerButton { primary, middle, secondary };

/// What a wheel or touchpad delta counts: wheel notches (`OverlayInput::pointsPerNotch` points
/// each) or points, as touchpads report.
enum class ScrollUnit { notches, points };

/// Routes a desktop window's input to the SDK's kit window laid over the game, and says for each
/// event whether the SDK consumed it; an event not consumed belongs to the game. It knows no
/// toolkit: a host (GTK, SDL, GLFW) translates its events into these calls, in window points.
///
/// Pointer: a press goes to the overlay only where the view the kit hit-tests (visible, interactive)
/// or one of its ancestors takes it: a control, a view with a gesture recogniser, a painted
/// background. Elsewhere (empty, transparent containers, the window's transparent root) it is not
/// consumed and the moves and the release of that press go to the game as well, wherever the
/// pointer goes. A primary press the overlay takes becomes a kit touch, so its moves drive pan
/// recognisers (dragging the floating button) and its release taps; other buttons over the overlay
/// are consumed without effect. Moves with no press held (hover) are never consumed. A press on the
/// game also ends text editing in the overlay, so that the keyboard returns to the game.
///
/// Wheel: scrolls the innermost scrollable view under the pointer, kept within its content;
/// consumed wherever a press would be. Positive `dy` reveals content further down (GTK's sign; SDL's
/// wheel `y` is the opposite).
///
/// Keys and text: to the window's first responder (a focused text field); consumed when there is one
/// that used them. Escape with no responder using it dismisses a presented form sheet (consumed).
///
/// Threading: main thread only, like the window. Ownership: holds the window strongly; layout is
/// brought up to date before each pointer event so that hit-testing sees current frames.
class OverlayInput {
  public:
    static constexpr double pointsPerNotch = 40;

    explicit OverlayInput(std::shared_ptr<kit::Window> window);

    const std::shared_ptr<kit::Window>& window() const { return window_; }

    bool pointerPress(kit::Point location, PointerButton button = PointerButton::primary);
    bool pointerMove(kit::Point location);
    bool pointerRelease(kit::Point location, PointerButton button = PointerButton::primary);
    /// The host lost the pointer (focus left the window, grab broken): an overlay touch in progress is
    /// cancelled, a game press forgotten.
    void pointerCancel();
    bool scroll(kit::Point location, double dx, double dy, ScrollUnit unit = ScrollUnit::points);
    bool key(kit::Key key, kit::KeyModifiers modifiers = {});
    /// Committed text (typed characters, input-method commits) for the focused field.
    bool text(std::string_view text);

    /// Whether a press at `location` would be consumed: for hosts that must decide before the event
    /// arrives (a toolkit asking which widget lies under the pointer). During an overlay press, true
    /// everywhere.
    bool takesPointerAt(kit::Point location);
    /// Whether a press sequence is in progress, and whose.
    bool isOverlayPressed() const { return owner_ == Owner::overlay; }
    bool isGamePressed() const { return owner_ == Owner::game; }

  private:
    enum class Owner { none, overlay, game };

    /// The view that would take a press at `location`, or null where the game should have it.
    std::shared_ptr<kit::View> interactiveViewAt(kit::Point location);

    std::shared_ptr<kit::Window> window_;
    Owner owner_ = Owner::none;
    PointerButton pressedButton_ = PointerButton::primary;
    bool touching_ = false;
};

}  // namespace ovix::desktop
