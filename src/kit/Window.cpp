#include "ovix/kit/Window.h"

#include <algorithm>

#include "kit/LayoutEngine.h"
#include "ovix/kit/Control.h"
#include "ovix/kit/GestureRecognizer.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/TapGestureRecognizer.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/WindowScene.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

/// Every live window, for "only one key window in the process".
std::vector<std::weak_ptr<Window>>& liveWindows() {
    static std::vector<std::weak_ptr<Window>> windows;
    return windows;
}

}  // namespace

void Window::track(const std::shared_ptr<Window>& window) {
    window->windowCache_ = window;  // a window is its own window: its layout is scheduled too
    auto& all = liveWindows();
    std::erase_if(all, [](const std::weak_ptr<Window>& w) { return w.expired(); });
    all.push_back(window);
}

namespace {

/// A tap recognizer above a control leaves the tap to the control, as controls take precedence over
/// their ancestors' taps.
bool controlBetween(const View& hit, const View& recognizerView) {
    for (const View* v = &hit; v && v != &recognizerView; v = v->superview().get()) {
        if (dynamic_cast<const Control*>(v)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::shared_ptr<Window> Window::create(const std::shared_ptr<WindowScene>& scene, EdgeInsets safeArea) {
    Rect frame = scene && scene->screen() ? scene->screen()->bounds() : Rect{};
    auto window = std::make_shared<Window>(frame);
    window->safeArea_ = safeArea;
    if (scene) {
        window->scene_ = scene;
        scene->windows_.push_back(window);
    }
    track(window);
    return window;
}

std::shared_ptr<Window> Window::create(Rect frame) {
    auto window = std::make_shared<Window>(frame);
    track(window);
    return window;
}

Window::Window(Rect frame) : View(frame) {
    hidden_ = true;
}  // shown by makeKeyAndVisible

Window::~Window() = default;

void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    if (controller == rootViewController_) {
        return;
    }
    auto old = rootViewController_;
    std::shared_ptr<View> oldView = old ? old->viewIfLoaded() : nullptr;
    if (old) {
        old->dismissAllPresentedImmediately();
    }
    rootViewController_ = controller;
    if (controller) {
        auto view = controller->view();
        std::size_t index = 0;
        if (oldView && oldView->superview().get() == this) {
            auto& subs = subviews();
            index = static_cast<std::size_t>(std::find(subs.begin(), subs.end(), oldView) - subs.begin());
        }
        controller->viewWillAppear(false);
        view->setFrame(bounds());
        view->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
        insertSubview(view, index);
        controller->viewDidAppear(false);
    }
    if (oldView && oldView->superview().get() == this) {
        oldView->removeFromSuperview();
    }
}

void Window::makeKey() {
    for (auto& weak : liveWindows()) {
        if (auto w = weak.lock(); w && w.get() != this) {
            w->key_ = false;
        }
    }
    key_ = true;
}

void Window::makeKeyAndVisible() {
    makeKey();
    setHidden(false);
}

void Window::setWindowSafeAreaInsets(EdgeInsets insets) {
    if (insets != safeArea_) {
        safeArea_ = insets;
        LayoutEngine::noteChange();
        setNeedsLayout();
    }
}

bool Window::setFirstResponder(std::shared_ptr<View> responder) {
    firstResponder_ = responder;
    return true;
}

void Window::scheduleLayout() {
    if (layoutScheduled_ || LayoutEngine::isLayingOut()) {
        return;
    }
    layoutScheduled_ = true;
    std::weak_ptr<Window> weak = self<Window>();
    platform::current()->mainQueue->async([weak] {
        if (auto window = weak.lock()) {
            window->layoutScheduled_ = false;
            window->layoutIfNeeded();
        }
    });
}

// --- Input ---

void Window::touchDown(Point location) {
    if (active_) {
        touchCancel();
    }
    auto hit = hitTest(location);
    if (!hit) {
        return;
    }
    auto touch = std::make_shared<ActiveTouch>();
    touch->touch.windowLocation = location;
    touch->touch.startLocation = location;
    touch->touch.phase = TouchPhase::began;
    touch->touch.view = hit;
    touch->touch.window = self<Window>();
    touch->view = hit;
    for (auto v = hit; v; v = v->superview()) {
        for (auto& r : v->gestureRecognizers()) {
            bool tapAboveControl = dynamic_cast<TapGestureRecognizer*>(r.get()) && controlBetween(*hit, *v);
            if (r->isEnabled() && !tapAboveControl) {
                touch->recognizers.push_back(r);
            }
        }
    }
    active_ = touch;
    auto keep = self<Window>();
    for (auto& r : touch->recognizers) {
        r->reset();
        r->touchBegan(touch->touch);
    }
    hit->touchesBegan(touch->touch);
}

std::shared_ptr<GestureRecognizer> Window::offer(ActiveTouch& a, bool ended) {
    for (auto& r : std::vector<std::shared_ptr<GestureRecognizer>>(a.recognizers)) {
        if (r->state() == GestureRecognizerState::failed) {
            continue;
        }
        if (ended) {
            r->touchEnded(a.touch);
        } else {
            r->touchMoved(a.touch);
        }
        if (r->hasRecognized()) {
            for (auto& other : a.recognizers) {
                if (other != r) {
                    other->fail();
                }
            }
            return r;
        }
    }
    return nullptr;
}

void Window::touchMove(Point location) {
    auto a = active_;  // an action may end the touch: keep its state alive
    if (!a) {
        return;
    }
    auto keep = self<Window>();
    a->touch.windowLocation = location;
    a->touch.phase = TouchPhase::moved;
    if (a->winner) {
        a->winner->touchMoved(a->touch);
    } else if ((a->winner = offer(*a, false)) && a->winner->cancelsTouchesInView()) {
        a->view->touchesCancelled(a->touch);
        return;
    }
    if (active_ == a && (!a->winner || !a->winner->cancelsTouchesInView())) {
        a->view->touchesMoved(a->touch);
    }
}

void Window::touchUp(Point location) {
    auto a = std::move(active_);
    if (!a) {
        return;
    }
    auto keep = self<Window>();
    a->touch.windowLocation = location;
    a->touch.phase = TouchPhase::ended;
    bool viewHadIt = !a->winner || !a->winner->cancelsTouchesInView();
    if (a->winner) {
        a->winner->touchEnded(a->touch);
    } else {
        a->winner = offer(*a, true);
    }
    if (viewHadIt) {
        if (a->winner && a->winner->cancelsTouchesInView()) {
            a->view->touchesCancelled(a->touch);
        } else {
            a->view->touchesEnded(a->touch);
        }
    }
    for (auto& r : a->recognizers) {
        r->reset();
    }
}

void Window::touchCancel() {
    if (!active_) {
        return;
    }
    auto touch = std::move(active_);
    touch->touch.phase = TouchPhase::cancelled;
    for (auto& r : touch->recognizers) {
        r->touchCancelled(touch->touch);
        r->reset();
    }
    touch->view->touchesCancelled(touch->touch);
}

void Window::tap(Point location) {
    touchDown(location);
    touchUp(location);
}

void Window::drag(Point from, Point to, int steps) {
    touchDown(from);
    steps = std::max(steps, 1);
    for (int i = 1; i <= steps; ++i) {
        double f = static_cast<double>(i) / steps;
        touchMove({from.x + (to.x - from.x) * f, from.y + (to.y - from.y) * f});
    }
    touchUp(to);
}

void Window::insertText(std::string_view text) {
    if (auto responder = firstResponder()) {
        responder->insertText(text);
    }
}

std::shared_ptr<ViewController> Window::topPresentedController() const {
    auto top = rootViewController_;
    while (top && top->presentedViewController()) {
        top = top->presentedViewController();
    }
    return top != rootViewController_ ? top : nullptr;
}

namespace {

void collectTextInputs(const std::shared_ptr<View>& view, std::vector<std::shared_ptr<View>>& out) {
    if (view->isHidden() || view->alpha() < 0.01 || !view->isUserInteractionEnabled()) {
        return;
    }
    if (view->canBecomeFirstResponder()) {
        out.push_back(view);
    }
    for (const auto& subview : view->subviews()) {
        collectTextInputs(subview, out);
    }
}

bool isSheet(ModalPresentationStyle style) {
    return style == ModalPresentationStyle::formSheet || style == ModalPresentationStyle::pageSheet ||
           style == ModalPresentationStyle::automatic;
}

}  // namespace

bool Window::focusNextTextInput(bool backwards) {
    const auto presented = topPresentedController();
    std::vector<std::shared_ptr<View>> inputs;
    collectTextInputs(presented ? presented->view() : self<View>(), inputs);
    if (inputs.empty()) {
        return false;
    }
    const auto responder = firstResponder();
    const auto count = static_cast<std::ptrdiff_t>(inputs.size());
    std::ptrdiff_t index = std::find(inputs.begin(), inputs.end(), responder) - inputs.begin();
    if (index == count) {
        index = backwards ? 0 : -1;  // from outside the list: the first (or last) input
    }
    for (std::ptrdiff_t step = 1; step <= count; ++step) {
        const auto& next =
            inputs[static_cast<std::size_t>(((index + (backwards ? -step : step)) % count + count) % count)];
        if (next == responder || next->becomeFirstResponder()) {
            return true;
        }
    }
    return true;
}

bool Window::keyDown(Key key, KeyModifiers modifiers) {
    auto responder = firstResponder();
    if (responder && responder->keyDown(key, modifiers)) {
        return true;
    }
    if (key == Key::tab && responder) {
        return focusNextTextInput(modifiers.shift);
    }
    if (key == Key::escape) {
        if (auto top = topPresentedController(); top && isSheet(top->modalPresentationStyle())) {
            top->dismiss(true);
            return true;
        }
    }
    return false;
}

void Window::deleteBackward() {
    if (auto responder = firstResponder()) {
        responder->deleteBackward();
    }
}

}  // namespace ovix::kit
