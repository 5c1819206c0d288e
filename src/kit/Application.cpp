#include "ovix/kit/Application.h"

#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

kit::host::Application& Application::shared() {
    return *platform::current()->application;
}

std::shared_ptr<Window> Application::keyWindow() {
    for (auto& scene : shared().connectedScenes()) {
        if (!scene) {
            continue;
        }
        for (auto& window : scene->windows()) {
            if (window->isKeyWindow()) {
                return window;
            }
        }
    }
    return nullptr;
}

}  // namespace ovix::kit
