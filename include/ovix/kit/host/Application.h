#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ovix::kit {
class Screen;
class Window;
class WindowScene;
}  // namespace ovix::kit

namespace ovix::kit::host {

/// The host application: its scenes and windows, its main screen, URL handling and
/// remote-notification registration.
///
/// Threading: main thread only. Scene and window lists are in a stable order (the order in which they
/// were connected or created). Which window is key is the windows' own state (`kit::Window`).
class Application {
  public:
    virtual ~Application() = default;
    virtual std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const = 0;
    /// Every window of the application, in creation order.
    virtual std::vector<std::shared_ptr<kit::Window>> windows() const = 0;
    /// Hands the URL to the system's URL handler; false when nothing could take it.
    virtual bool open(const std::string& url) = 0;
    virtual bool canOpen(const std::string& url) const = 0;
    virtual void registerForRemoteNotifications() = 0;
    /// The main display. The default describes the device's screen facts (`DeviceFacts::screen`) as
    /// they are now; hosts with windows keep their own screen and turn it.
    virtual std::shared_ptr<kit::Screen> mainScreen() const;
};

}  // namespace ovix::kit::host
