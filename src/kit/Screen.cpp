#include "ovix/kit/Screen.h"

#include "ovix/kit/host/Application.h"
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
