#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ovix/kit/Screen.h"
#include "ovix/kit/host/Application.h"
#include "ovix/platform/Console.h"
#include "ovix/platform/DeviceFacts.h"

namespace ovix::platform::desktop {

/// The application of a game that runs in one desktop window: one scene whose one window (key and
/// visible, no safe-area insets, a clear root controller for the SDK to present over) covers the game
/// window's content area, and a main screen of that size. A landscape window is a landscape screen: the
/// orientation is `landscapeRight` while the content is wider than tall, `portrait` otherwise. URLs go to the
/// desktop's default handler for their scheme.
///
/// Threading: main thread, except `screenFacts` (any thread). The scene and window are made on
/// first use, after the platform is installed.
class GameWindowApplication : public kit::host::Application {
  public:
    GameWindowApplication(kit::Size contentSize, double scale, std::shared_ptr<Console> console);

    std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const override;
    std::vector<std::shared_ptr<kit::Window>> windows() const override;
    /// Launches the default handler of the URL's scheme; false (with a console line) when none took it.
    bool open(const std::string& url) override;
    /// Whether the desktop has a default handler for the URL's scheme.
    bool canOpen(const std::string& url) const override;
    /// No push service on the desktop: reported as unsupported.
    void registerForRemoteNotifications() override;
    std::shared_ptr<kit::Screen> mainScreen() const override;

    /// The kit window over the game's content.
    std::shared_ptr<kit::Window> window() const;
    /// The game's content area now measures `size` points at `scale` pixels per point. The screen and
    /// the window follow; when the longer side changes the orientation notification is posted. The
    /// same size again does nothing.
    void resize(kit::Size size, double scale);
    /// The screen as the device facts report it.
    ScreenFacts screenFacts() const;

  private:
    void ensureWindow() const;
    static std::shared_ptr<kit::Screen> makeScreen(kit::Size size, double scale);

    std::shared_ptr<Console> console_;
    std::shared_ptr<kit::Screen> screen_;
    mutable std::shared_ptr<kit::WindowScene> scene_;
    mutable std::shared_ptr<kit::Window> window_;
    mutable std::mutex factsMutex_;
    ScreenFacts facts_;
};

}  // namespace ovix::platform::desktop
