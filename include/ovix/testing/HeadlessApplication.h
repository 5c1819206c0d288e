#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/host/Application.h"

namespace ovix::testing {

/// The application of the headless platform: one main screen of a chosen size, scenes and windows
/// covering it, URLs recorded instead of opened, and orientation changes on request.
///
/// The scene and its windows are made on first use (after the platform is installed), the first
/// window key and visible, as a game's window is. Main thread only.
class HeadlessApplication : public kit::host::Application {
  public:
    struct Options {
        /// The screen in portrait, in points.
        kit::Size screenSize{390, 844};
        double scale = 3;
        kit::EdgeInsets portraitSafeArea{47, 0, 34, 0};
        kit::EdgeInsets landscapeSafeArea{0, 47, 21, 47};
        /// Windows in the one scene; 0 gives a scene without windows.
        int windowCount = 1;
        /// URL schemes that can be opened (compared without case).
        std::vector<std::string> openableSchemes{"http", "https"};
    };

    static std::shared_ptr<HeadlessApplication> create(Options options);
    static std::shared_ptr<HeadlessApplication> create() { return create(Options{}); }
    explicit HeadlessApplication(Options options);

    std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const override;
    std::vector<std::shared_ptr<kit::Window>> windows() const override;
    /// Records the URL when its scheme can be opened; false otherwise.
    bool open(const std::string& url) override;
    bool canOpen(const std::string& url) const override;
    void registerForRemoteNotifications() override { ++remoteRegistrations_; }
    std::shared_ptr<kit::Screen> mainScreen() const override { return screen_; }

    /// Adds a scene (after the existing ones).
    void connectScene(std::shared_ptr<kit::WindowScene> scene);
    void disconnectScene(const kit::WindowScene& scene);
    /// A new window in the first scene, covering the screen, with the current safe area; not key.
    std::shared_ptr<kit::Window> addWindow();
    /// Turns the device: the screen's bounds follow, windows covering the screen are resized and
    /// get the orientation's safe area, and the orientation notification is posted. Turning to the
    /// current orientation does nothing.
    void rotate(kit::DeviceOrientation orientation);
    void setOpenableSchemes(std::vector<std::string> schemes) {
        options_.openableSchemes = std::move(schemes);
    }

    const std::vector<std::string>& openedUrls() const { return opened_; }
    int remoteNotificationRegistrations() const { return remoteRegistrations_; }

  private:
    void ensureScene() const;
    kit::EdgeInsets currentSafeArea() const;

    Options options_;
    std::shared_ptr<kit::Screen> screen_;
    mutable bool populated_ = false;
    mutable std::vector<std::shared_ptr<kit::WindowScene>> scenes_;
    std::vector<std::string> opened_;
    int remoteRegistrations_ = 0;
};

}  // namespace ovix::testing
