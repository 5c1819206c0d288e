#include "ovix/kit/NavigationController.h"

#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/Screen.h"

namespace ovix::kit {

std::shared_ptr<NavigationController> NavigationController::create(std::shared_ptr<ViewController> root) {
    auto nav = std::make_shared<NavigationController>();
    if (root) {
        nav->addChild(std::move(root));
    }
    return nav;
}

std::shared_ptr<ViewController> NavigationController::topViewController() const {
    return children().empty() ? nullptr : children().back();
}

void NavigationController::loadView() {
    auto view = View::create(Screen::main()->bounds());
    view->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    setView(view);
    bar_ = NavigationBar::create();
    bar_->setTranslatesAutoresizingMaskIntoConstraints(false);
    bar_->setHidden(barHidden_);
    view->addSubview(bar_);
    LayoutConstraint::activate({
        bar_->leadingAnchor().constraintEqualTo(view->leadingAnchor()),
        bar_->trailingAnchor().constraintEqualTo(view->trailingAnchor()),
        bar_->topAnchor().constraintEqualTo(view->safeAreaLayoutGuide().topAnchor()),
        bar_->heightAnchor().constraintEqualToConstant(NavigationBar::height),
    });
    showTop(false);
}

std::shared_ptr<NavigationBar> NavigationController::navigationBar() {
    loadViewIfNeeded();
    return bar_;
}

void NavigationController::applyBarInset(const std::shared_ptr<ViewController>& controller) {
    controller->setContainerSafeAreaInsets({barHidden_ ? 0 : NavigationBar::height, 0, 0, 0});
}

void NavigationController::showTop(bool animated) {
    auto root = viewIfLoaded();
    if (!root) {
        return;
    }
    auto top = topViewController();
    auto old = shown_.lock();
    if (top == old) {
        return;
    }
    if (old && old->isViewLoaded()) {
        old->viewWillDisappear(animated);
        old->viewIfLoaded()->removeFromSuperview();
        old->viewDidDisappear(animated);
    }
    shown_ = top;
    bar_->showItemOf(top);
    if (!top) {
        return;
    }
    applyBarInset(top);
    auto view = top->view();
    Rect bounds = root->bounds();
    top->viewWillAppear(animated);
    view->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    root->insertSubviewBelow(view, *bar_);
    if (animated) {
        View::performWithoutAnimation([&] { view->setFrame(bounds.offsetBy(bounds.size.width, 0)); });
        View::animate(
            transitionDuration, [view, bounds] { view->setFrame(bounds); },
            [top, animated](bool) { top->viewDidAppear(animated); });
    } else {
        view->setFrame(bounds);
        top->viewDidAppear(false);
    }
}

void NavigationController::setViewControllers(std::vector<std::shared_ptr<ViewController>> controllers,
                                              bool animated) {
    for (auto& c : std::vector<std::shared_ptr<ViewController>>(children())) {
        c->removeFromParent();
    }
    for (auto& c : controllers) {
        addChild(c);
    }
    showTop(animated);
}

void NavigationController::pushViewController(std::shared_ptr<ViewController> controller, bool animated) {
    if (!controller) {
        return;
    }
    addChild(std::move(controller));
    showTop(animated);
}

std::shared_ptr<ViewController> NavigationController::popViewController(bool animated) {
    if (children().size() <= 1) {
        return nullptr;
    }
    auto top = topViewController();
    top->removeFromParent();
    showTop(animated);
    return top;
}

void NavigationController::popToRootViewController(bool animated) {
    while (children().size() > 1) {
        children().back()->removeFromParent();
    }
    showTop(animated);
}

void NavigationController::setNavigationBarHidden(bool hidden, bool animated) {
    (void)animated;  // the bar appears and disappears at once; layout follows on the next pass
    barHidden_ = hidden;
    if (bar_) {
        bar_->setHidden(hidden);
    }
    for (auto& c : children()) {
        applyBarInset(c);
    }
}

}  // namespace ovix::kit
