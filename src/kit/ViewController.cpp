#include "ovix/kit/ViewController.h"

#include <algorithm>

#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/Window.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

bool isSheet(ModalPresentationStyle style) {
    return style == ModalPresentationStyle::automatic || style == ModalPresentationStyle::pageSheet ||
           style == ModalPresentationStyle::formSheet;
}

EdgeInsets sum(EdgeInsets a, EdgeInsets b) {
    return {a.top + b.top, a.left + b.left, a.bottom + b.bottom, a.right + b.right};
}

void warn(const std::string& line) {
    platform::current()->console->printLine("⚠️ " + line);
}

}  // namespace

ViewController::~ViewController() = default;

std::shared_ptr<View> ViewController::view() {
    if (!view_ && !loading_) {
        loading_ = true;
        loadView();
        if (!view_) {
            setView(View::create());
        }
        loading_ = false;
        viewDidLoad();
    }
    return view_;
}

void ViewController::loadView() {
    auto view = View::create(Screen::main()->bounds());
    view->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    setView(view);
}

void ViewController::setView(std::shared_ptr<View> view) {
    if (view_) {
        view_->viewController_.reset();
    }
    view_ = std::move(view);
    if (view_) {
        view_->viewController_ = self();
        applySafeArea();
    }
}

void ViewController::setTitle(std::string title) {
    title_ = title;
    navigationItem_.setTitle(std::move(title));
}

std::shared_ptr<NavigationController> ViewController::navigationController() const {
    for (auto c = std::const_pointer_cast<ViewController>(shared_from_this()); c; c = c->parent()) {
        if (auto nav = std::dynamic_pointer_cast<NavigationController>(c)) {
            return nav;
        }
    }
    return nullptr;
}

void ViewController::addChild(std::shared_ptr<ViewController> child) {
    if (!child || child.get() == this) {
        return;
    }
    child->removeFromParent();
    child->parent_ = self();
    children_.push_back(std::move(child));
}

void ViewController::removeFromParent() {
    auto parent = parent_.lock();
    if (!parent) {
        return;
    }
    auto keep = self();
    std::erase_if(parent->children_, [this](auto& c) { return c.get() == this; });
    parent_.reset();
}

void ViewController::setAdditionalSafeAreaInsets(EdgeInsets insets) {
    additionalSafeArea_ = insets;
    applySafeArea();
}

void ViewController::setContainerSafeAreaInsets(EdgeInsets insets) {
    containerSafeArea_ = insets;
    applySafeArea();
}

void ViewController::applySafeArea() {
    if (view_) {
        view_->setAdditionalSafeAreaInsets(sum(additionalSafeArea_, containerSafeArea_));
    }
}

std::shared_ptr<ViewController> ViewController::presentationRoot() {
    auto c = self();
    while (auto p = c->parent()) {
        c = p;
    }
    return c;
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
    return presented_;
}

std::shared_ptr<ViewController> ViewController::presentingViewController() const {
    for (auto c = std::const_pointer_cast<ViewController>(shared_from_this()); c; c = c->parent()) {
        if (auto p = c->presenting_.lock()) {
            return p;
        }
    }
    return nullptr;
}

void ViewController::present(std::shared_ptr<ViewController> controller, bool animated,
                             std::function<void()> completion) {
    if (!controller || controller.get() == this) {
        return;
    }
    auto presenter = presentationRoot();
    if (presenter->presented_) {
        warn("Attempt to present " + controller->className() + " on " + presenter->className() +
             " which is already presenting " + presenter->presented_->className());
        return;
    }
    if (controller->presenting_.lock() || controller->parent()) {
        warn("Attempt to present " + controller->className() + " which is already presented or contained");
        return;
    }
    auto window = presenter->view_ ? presenter->view_->window() : nullptr;
    if (!window) {
        warn("Attempt to present " + controller->className() + " on " + presenter->className() +
             " whose view is not in the window hierarchy");
        return;
    }
    presenter->presented_ = controller;
    controller->presenting_ = presenter;

    auto view = controller->view();
    Rect bounds = window->bounds();
    Rect target = bounds;
    if (isSheet(controller->presentationStyle_)) {
        double top = window->windowSafeAreaInsets().top + 10;
        target = {0, top, bounds.size.width, bounds.size.height - top};
    }
    controller->viewWillAppear(animated);
    View::performWithoutAnimation([&] {
        view->setAlpha(1);
        view->setFrame(target);
    });
    view->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    window->addSubview(view);

    auto finish = [controller, animated, completion = std::move(completion)](bool) {
        controller->viewDidAppear(animated);
        if (completion) {
            completion();
        }
    };
    if (!animated) {
        platform::current()->mainQueue->async([finish] { finish(true); });
        return;
    }
    if (controller->transitionStyle_ == ModalTransitionStyle::crossDissolve) {
        View::performWithoutAnimation([&] { view->setAlpha(0); });
        View::animate(
            transitionDuration, [view] { view->setAlpha(1); }, finish);
    } else {
        View::performWithoutAnimation(
            [&] { view->setFrame(target.offsetBy(0, bounds.size.height - target.y())); });
        View::animate(
            transitionDuration, [view, target] { view->setFrame(target); }, finish);
    }
}

void ViewController::dismiss(bool animated, std::function<void()> completion) {
    if (presented_) {
        removePresented(presented_, animated, std::move(completion));
        return;
    }
    for (auto c = self(); c; c = c->parent()) {
        if (auto presenter = c->presenting_.lock()) {
            presenter->removePresented(c, animated, std::move(completion));
            return;
        }
    }
}

void ViewController::removePresented(const std::shared_ptr<ViewController>& presented, bool animated,
                                     std::function<void()> completion) {
    auto target = presented;  // keep it alive through the transition
    target->dismissAllPresentedImmediately();
    if (presented_ == target) {
        presented_.reset();
    }
    target->presenting_.reset();
    auto view = target->view_;
    target->viewWillDisappear(animated);
    auto finish = [target, view, animated, completion = std::move(completion)](bool) {
        if (view) {
            view->removeFromSuperview();
        }
        target->viewDidDisappear(animated);
        if (completion) {
            completion();
        }
    };
    auto window = view ? view->window() : nullptr;
    if (!animated || !window) {
        if (view) {
            view->removeFromSuperview();
        }
        target->viewDidDisappear(false);
        if (completion) {
            platform::current()->mainQueue->async(completion);
        }
        return;
    }
    if (target->transitionStyle_ == ModalTransitionStyle::crossDissolve) {
        View::animate(
            transitionDuration, [view] { view->setAlpha(0); }, finish);
    } else {
        Rect frame = view->frame();
        double height = window->bounds().size.height;
        View::animate(
            transitionDuration,
            [view, frame, height] { view->setFrame(frame.offsetBy(0, height - frame.y())); }, finish);
    }
}

void ViewController::dismissAllPresentedImmediately() {
    auto presented = std::move(presented_);
    presented_.reset();
    if (!presented) {
        return;
    }
    presented->dismissAllPresentedImmediately();
    presented->presenting_.reset();
    if (presented->view_) {
        presented->view_->removeFromSuperview();
    }
    presented->viewDidDisappear(false);
}

}  // namespace ovix::kit
