#pragma once

#include <memory>
#include <vector>

namespace ovix::kit {

class Screen;
class Window;

/// A scene the application shows windows in: its windows in creation order and its screen.
/// The application's host connects scenes; main thread only.
class WindowScene : public std::enable_shared_from_this<WindowScene> {
  public:
    static std::shared_ptr<WindowScene> create(std::shared_ptr<Screen> screen);
    explicit WindowScene(std::shared_ptr<Screen> screen) : screen_(std::move(screen)) {}

    /// Owned by the scene, in creation order.
    const std::vector<std::shared_ptr<Window>>& windows() const { return windows_; }
    const std::shared_ptr<Screen>& screen() const { return screen_; }
    /// The scene's key window, if one of its windows is key.
    std::shared_ptr<Window> keyWindow() const;

  private:
    friend class Window;
    std::shared_ptr<Screen> screen_;
    std::vector<std::shared_ptr<Window>> windows_;
};

}  // namespace ovix::kit
