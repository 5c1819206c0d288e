#include "ui/ScreenRoot.h"

#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/host/Application.h"
#include "ovix/platform/Platform.h"

namespace ovix {

void ScreenRoot::install(std::shared_ptr<kit::ViewController> screen) {
    auto navigation = kit::NavigationController::create(std::move(screen));
    const auto windows = platform::current()->application->windows();
    if (windows.empty()) {
        return;
    }
    windows.front()->setRootViewController(navigation);
    windows.front()->makeKeyAndVisible();
}

}  // namespace ovix
