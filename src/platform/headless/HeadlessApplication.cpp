#include "ovix/testing/HeadlessApplication.h"

#include <algorithm>
#include <cctype>

#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/Window.h"
#include "ovix/kit/WindowScene.h"

namespace ovix::testing {

namespace {

/// The scheme of "scheme:rest" in lower case; empty when there is none.
std::string schemeOf(const std::string& url) {
    auto colon = url.find(':');
    if (colon == std::string::npos || colon == 0) {
        return {};
    }
    std::string scheme = url.substr(0, colon);
    bool valid = std::isalpha(static_cast<unsigned char>(scheme[0])) &&
                 std::all_of(scheme.begin(), scheme.end(), [](unsigned char c) {
                     return std::isalnum(c) || c == '+' || c == '-' || c == '.';
                 });
    if (!valid) {
        return {};
    }
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return scheme;
}

}  // namespace

std::shared_ptr<HeadlessApplication> HeadlessApplication::create(Options options) {
    return std::make_shared<HeadlessApplication>(std::move(options));
}

HeadlessApplication::HeadlessApplication(Options options)
    : options_(std::move(options)),
      screen_(std::make_shared<kit::Screen>(options_.screenSize, options_.scale)) {}

void HeadlessApplication::ensureScene() const {
    if (populated_) {
        return;
    }
    populated_ = true;
    auto scene = kit::WindowScene::create(screen_);
    scenes_.insert(scenes_.begin(), scene);
    for (int i = 0; i < options_.windowCount; ++i) {
        // Made before the platform may be installed: nothing here schedules work on a queue.
        auto window = kit::Window::create(scene, currentSafeArea());
        if (i == 0) {
            window->makeKeyAndVisible();
        }
    }
}

kit::EdgeInsets HeadlessApplication::currentSafeArea() const {
    return kit::isLandscape(screen_->orientation()) ? options_.landscapeSafeArea : options_.portraitSafeArea;
}

std::vector<std::shared_ptr<kit::WindowScene>> HeadlessApplication::connectedScenes() const {
    ensureScene();
    return scenes_;
}

std::vector<std::shared_ptr<kit::Window>> HeadlessApplication::windows() const {
    ensureScene();
    std::vector<std::shared_ptr<kit::Window>> all;
    for (auto& scene : scenes_) {
        all.insert(all.end(), scene->windows().begin(), scene->windows().end());
    }
    return all;
}

bool HeadlessApplication::canOpen(const std::string& url) const {
    std::string scheme = schemeOf(url);
    return !scheme.empty() && std::any_of(options_.openableSchemes.begin(), options_.openableSchemes.end(),
                                          [&](const std::string& s) { return schemeOf(s + ":") == scheme; });
}

bool HeadlessApplication::open(const std::string& url) {
    if (!canOpen(url)) {
        return false;
    }
    opened_.push_back(url);
    return true;
}

void HeadlessApplication::connectScene(std::shared_ptr<kit::WindowScene> scene) {
    ensureScene();
    if (scene) {
        scenes_.push_back(std::move(scene));
    }
}

void HeadlessApplication::disconnectScene(const kit::WindowScene& scene) {
    ensureScene();
    std::erase_if(scenes_, [&](auto& s) { return s.get() == &scene; });
}

std::shared_ptr<kit::Window> HeadlessApplication::addWindow() {
    ensureScene();
    if (scenes_.empty()) {
        scenes_.push_back(kit::WindowScene::create(screen_));
    }
    return kit::Window::create(scenes_.front(), currentSafeArea());
}

void HeadlessApplication::rotate(kit::DeviceOrientation orientation) {
    ensureScene();
    if (orientation == screen_->orientation()) {
        return;  // the device did not turn: no notification
    }
    kit::Rect before = screen_->bounds();
    screen_->setOrientation(orientation);
    kit::Rect after = screen_->bounds();
    for (auto& window : windows()) {
        if (window->frame() == before) {
            window->setFrame(after);
        }
        window->setWindowSafeAreaInsets(currentSafeArea());
    }
    kit::NotificationCenter::defaultCenter().post(kit::deviceOrientationDidChangeNotification);
}

}  // namespace ovix::testing
