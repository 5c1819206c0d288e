#include "ovix/kit/host/Application.h"

#include "ovix/kit/Screen.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit::host {

std::shared_ptr<kit::Screen> Application::mainScreen() const {
    // A platform without its own screen model reports the device's display as it stands.
    auto facts = platform::current()->deviceFacts->screen();
    return std::make_shared<kit::Screen>(kit::Size{facts.width, facts.height}, facts.scale);
}

}  // namespace ovix::kit::host
