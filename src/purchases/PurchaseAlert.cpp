#include "purchases/PurchaseAlert.h"

#include "ovix/kit/AlertController.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"
#include "ovix/kit/host/Application.h"
#include "ovix/platform/Platform.h"

namespace ovix {

void PurchaseAlert::post(std::string message) {
    platform::current()->mainQueue->async([message = std::move(message)] { show(message); });
}

void PurchaseAlert::show(const std::string& message) {
    auto presenter = presentingController();
    if (!presenter) {
        return;
    }
    auto alert = kit::AlertController::create(std::string(title), message, kit::AlertControllerStyle::alert);
    alert->addAction(kit::AlertAction::create("OK", kit::AlertActionStyle::defaultStyle));
    presenter->present(alert, true);
}

std::shared_ptr<kit::ViewController> PurchaseAlert::presentingController() {
    // Deliberately the first scene's first window only, not a search for the key window.
    auto scenes = platform::current()->application->connectedScenes();
    if (scenes.empty() || !scenes.front() || scenes.front()->windows().empty()) {
        return nullptr;
    }
    const auto& window = scenes.front()->windows().front();
    return window ? window->rootViewController() : nullptr;
}

}  // namespace ovix
