#pragma once

#include <filesystem>
#include <memory>

#include "ovix/kit/Window.h"

// GTK's own declaration, repeated so that this header needs no GTK include path.
typedef struct _GtkWindow GtkWindow;

namespace ovix::desktop {

/// The SDK's screens inside a GTK game's own window: the kit window of the installed desktop
/// platform is painted over the game's content (the window's child goes into a GtkOverlay under the
/// SDK's layers), its bounds follow the content area, and its orientation notification fires when
/// the content turns from landscape to portrait or back.
///
/// Input: the game window's pointer, wheel, key and input-method events pass through the SDK's
/// input router first. What lands on an interactive SDK view (the floating button, a sheet, a text
/// field) is the SDK's and the game never sees it; everything else reaches the game untouched, as
/// if the overlay were not there. A web page (the login screen) is a real WebKitGTK widget placed
/// over its view's frame and takes its own input.
///
/// Painting: on demand. Input, SDK work on the main queue and resizes wake the frame clock; it
/// keeps redrawing while an animation or a drag runs and stops when the picture is still.
///
/// Threading: GTK's thread (the platform's main thread) for every call. Ownership: the game keeps
/// the overlay; destroying it puts the game's content back as the window's child, leaving the SDK's
/// views in the kit window. The game window must outlive the overlay.
class GameWindowOverlay {
  public:
    /// Layers the installed platform's window over `gameWindow`'s content. Null when the installed
    /// platform is not a desktop platform (`DesktopPlatform::create`) or the window has no child.
    /// One overlay per window at a time: the platform has one kit window to show.
    static std::shared_ptr<GameWindowOverlay> attach(GtkWindow* gameWindow);
    ~GameWindowOverlay();
    GameWindowOverlay(const GameWindowOverlay&) = delete;
    GameWindowOverlay& operator=(const GameWindowOverlay&) = delete;

    /// The kit window the SDK's screens go into (the application's key window).
    std::shared_ptr<kit::Window> window() const;
    /// Repaints after the game changed the SDK's views without going through the SDK's calls.
    void setNeedsDisplay();
    /// Whether the frame clock is redrawing now (false once the picture is still).
    bool isRedrawing() const;
    /// Writes what the game window shows (game, SDK views and pages) as a PNG; false when the window
    /// has not been drawn yet or the file could not be written. Call it between frames (from an idle
    /// or timeout source), not from inside a frame-clock callback, where GTK renders nothing.
    bool writeSnapshot(const std::filesystem::path& path) const;

    struct Impl;
    explicit GameWindowOverlay(std::unique_ptr<Impl> impl);

  private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace ovix::desktop
