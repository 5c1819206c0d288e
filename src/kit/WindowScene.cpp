#include "ovix/kit/WindowScene.h"

#include "ovix/kit/Window.h"

namespace ovix::kit {

std::shared_ptr<WindowScene> WindowScene::create(std::shared_ptr<Screen> screen) {
    return std::make_shared<WindowScene>(std::move(screen));
}

std::shared_ptr<Window> WindowScene::keyWindow() const {
    for (auto& window : windows_) {
        if (window->isKeyWindow()) {
            return window;
        }
    }
    return nullptr;
}

}  // namespace ovix::kit
