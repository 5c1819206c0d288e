#include "ovix/kit/Screen.h"

#include "ovix/platform/Platform.h"

namespace ovix::kit {

std::shared_ptr<Screen> Screen::main() {
    return platform::current()->application->mainScreen();
}

Rect Screen::bounds() const {
    // A square or portrait display keeps its size; landscape turns it.
    if (isLandscape(orientation_)) {
        return {0, 0, portraitSize_.height, portraitSize_.width};
    }
    return {0, 0, portraitSize_.width, portraitSize_.height};
}

}  // namespace ovix::kit

namespace ovix::platform {

std::shared_ptr<kit::Screen> Application::mainScreen() const {
    // A platform without its own screen model reports the device's display as it stands.
    auto facts = current()->deviceFacts->screen();
    return std::make_shared<kit::Screen>(kit::Size{facts.width, facts.height}, facts.scale);
}

}  // namespace ovix::platform
