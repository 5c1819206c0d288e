#pragma once

#include <filesystem>
#include <memory>

#include "ovix/desktop/OverlaySurface.h"
#include "ovix/platform/Platform.h"

// GTK's own declaration, repeated so that this header needs no GTK include path.
typedef struct _GtkWindow GtkWindow;

namespace ovix::desktop {

class GameWindowOverlay;

/// The SDK's services for a game that runs in a GTK 4 window on desktop Linux, every one real:
/// the GLib main queue (the thread that runs GTK), libcurl HTTP, the SQLite key-value store,
/// WebKitGTK pages, the Cairo/Pango renderer, Linux device facts whose screen is the game window's
/// content area at its scale, the sandbox store (Linux has no platform store), URLs opened with the
/// desktop's default handler, foreground notifications through the process's GApplication
/// ("unsupported" without one), and the SDK's resources found where the library was installed (or
/// OVIX_SDK_DIR), and images picked in GTK's file chooser, modal over the game window.
///
/// The one-call form for a game:
///
///     auto overlay = ovix::desktop::DesktopPlatform::install(GTK_WINDOW(window));
///     ovix::OvixCore::shared().initSdk(...);
///
/// Threading: call on GTK's thread, after GTK is initialised and before the SDK's first use; that
/// thread becomes the SDK's main thread and must run the default GLib main context.
class DesktopPlatform {
  public:
    struct Options {
        platform::Environment environment = platform::Environment::production();
        /// The key-value store's file; empty for the SDK's default under the XDG data directory.
        std::filesystem::path storePath;
    };

    /// The platform for `gameWindow`, not installed. The window is only measured here.
    static std::shared_ptr<platform::Platform> create(GtkWindow* gameWindow, const Options& options);
    static std::shared_ptr<platform::Platform> create(GtkWindow* gameWindow) {
        return create(gameWindow, {});
    }

    /// Creates and installs the platform, then layers the SDK's window over the game's content
    /// (`GameWindowOverlay::attach`). Keep the overlay while the game runs; dropping it gives the
    /// game its content back.
    static std::shared_ptr<GameWindowOverlay> install(GtkWindow* gameWindow, const Options& options);
    static std::shared_ptr<GameWindowOverlay> install(GtkWindow* gameWindow) {
        return install(gameWindow, {});
    }

    /// For a game with its own loop and no GTK window (SDL, GLFW, an engine): the same services for a
    /// drawing area of `width` x `height` points at `scale` pixels per point, except web pages, which
    /// need a GTK window and answer "unsupported". Installs the platform and returns the surface that
    /// draws the SDK's window for the game (see `OverlaySurface`); its `resize` keeps the screen, the
    /// window and the orientation in step with the game's area. GTK need not be initialised; the
    /// calling thread becomes the SDK's main thread, and `OverlaySurface::pump` runs its work.
    static std::unique_ptr<OverlaySurface> installSurface(double width, double height, double scale,
                                                          const Options& options);
    static std::unique_ptr<OverlaySurface> installSurface(double width, double height, double scale) {
        return installSurface(width, height, scale, {});
    }
};

}  // namespace ovix::desktop
