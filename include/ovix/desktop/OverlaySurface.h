#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "ovix/desktop/OverlayInput.h"
#include "ovix/kit/Key.h"
#include "ovix/kit/Window.h"

namespace ovix::desktop {

/// The SDK's screens for a game that runs its own loop (SDL, GLFW, a GL or Vulkan engine): each
/// frame the game pumps the SDK's work, forwards its input, asks for the overlay's pixels and
/// composites them over its scene.
///
///     auto overlay = ovix::desktop::DesktopPlatform::installSurface(1280, 720, 1);  // or your window
///     // each frame:
///     overlay->pump();
///     if (!overlay->pointerPress({x, y})) { /* the game's click */ }
///     if (overlay->render(pixels, 1280, 720, 1280 * 4)) { /* upload pixels to the overlay texture */ }
///     // draw the scene, then the overlay texture over it (straight alpha blending)
///
/// Pixels: `render` writes RGBA bytes (R, G, B, A in memory order; straight, not premultiplied,
/// alpha: transparent where the overlay shows nothing) at `scale` pixels per point, and only when
/// the picture changed since the last `render` into a buffer of that size: a view was added,
/// removed or changed, layout moved something, an animation is in flight (interpolated at the main
/// queue's current time), input was consumed or `pump` ran work. Otherwise it leaves the buffer
/// as it was and answers false, so keep the buffer (or the texture made from it) between frames.
/// A different size forces a full frame.
///
/// Input: window points (divide pixel coordinates by the scale), routed as `OverlayInput` says; each
/// call answers whether the SDK consumed the event, in which case the game ignores it.
///
/// Web pages (the login screen's) need a GTK host: they are not painted here.
///
/// Threading: every call on the SDK's main thread, the thread of the game loop, which must be the
/// thread that created the platform's main queue. `pump` runs the default GLib main context's
/// pending work there (the desktop main queue's, HTTP completions hopping to it, timers now due)
/// without ever waiting. Ownership: the surface holds the window; the window is the SDK's.
class OverlaySurface {
  public:
    /// Shows `window`. `onResize`, when given, hears each `resize` (size in points, scale) before the
    /// window takes its new frame: the host's application moves its screen there.
    explicit OverlaySurface(std::shared_ptr<kit::Window> window,
                            std::function<void(kit::Size size, double scale)> onResize = {});
    ~OverlaySurface();
    OverlaySurface(const OverlaySurface&) = delete;
    OverlaySurface& operator=(const OverlaySurface&) = delete;

    const std::shared_ptr<kit::Window>& window() const;

    /// Runs what is ready on the default GLib main context (at most `maxDispatches` sources, so that
    /// work that keeps reposting itself cannot hold the frame); never blocks. True when it ran any.
    bool pump(int maxDispatches = 64);

    /// The game's drawing area is now `width` x `height` points at `scale` pixels per point: the
    /// window takes that frame; the next `render` draws in full.
    void resize(double width, double height, double scale);
    double scale() const;

    bool pointerPress(kit::Point location, PointerButton button = PointerButton::primary);
    bool pointerMove(kit::Point location);
    bool pointerRelease(kit::Point location, PointerButton button = PointerButton::primary);
    void pointerCancel();
    bool scroll(kit::Point location, double dx, double dy, ScrollUnit unit = ScrollUnit::points);
    bool key(kit::Key key, kit::KeyModifiers modifiers = {});
    bool text(std::string_view text);
    /// The router itself, e.g. for `takesPointerAt` before the game claims a press.
    OverlayInput& input();

    /// Draws the overlay into `rgba` (`height` rows of `stride` bytes, `width` pixels each) when it
    /// changed; true when it drew. False, with the buffer untouched, for an idle frame or a null or
    /// too small buffer.
    bool render(std::uint8_t* rgba, int width, int height, int stride);
    /// Makes the next `render` draw even if nothing it watches changed.
    void setNeedsDisplay();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ovix::desktop
