#include "ovix/kit/NavigationBar.h"

#include "ovix/kit/ViewController.h"

namespace ovix::kit {

std::shared_ptr<NavigationBar> NavigationBar::create() {
    auto bar = std::make_shared<NavigationBar>();
    bar->setUp();
    return bar;
}

NavigationBar::NavigationBar()
    : View(Rect{0, 0, 0, height}),
      titleLabel_(Label::create()),
      leftButton_(Button::create(ButtonType::system)),
      rightButton_(Button::create(ButtonType::system)) {}

void NavigationBar::setUp() {
    setBackgroundColor(Color::rgb255(249, 249, 249, 0.94));
    titleLabel_->setFont(Font::systemFont(17, FontWeight::semibold));
    titleLabel_->setTextAlignment(TextAlignment::center);
    addSubview(titleLabel_);
    addSubview(leftButton_);
    addSubview(rightButton_);
    std::weak_ptr<NavigationBar> weak = self<NavigationBar>();
    auto trigger = [weak](bool left) {
        auto bar = weak.lock();
        auto controller = bar ? bar->controller_.lock() : nullptr;
        if (!controller) {
            return;
        }
        auto& item = controller->navigationItem();
        auto button = left ? item.leftBarButtonItem() : item.rightBarButtonItem();
        if (button) {
            button->trigger();
        }
    };
    leftButton_->addTarget([trigger] { trigger(true); }, ControlEvent::touchUpInside);
    rightButton_->addTarget([trigger] { trigger(false); }, ControlEvent::touchUpInside);
    refresh();
}

void NavigationBar::showItemOf(const std::shared_ptr<ViewController>& controller) {
    if (auto old = controller_.lock()) {
        old->navigationItem().setOnChange({});
    }
    controller_ = controller;
    if (controller) {
        std::weak_ptr<NavigationBar> weak = self<NavigationBar>();
        controller->navigationItem().setOnChange([weak] {
            if (auto bar = weak.lock()) {
                bar->refresh();
            }
        });
    }
    refresh();
}

void NavigationBar::refresh() {
    auto controller = controller_.lock();
    NavigationItem empty;
    NavigationItem& item = controller ? controller->navigationItem() : empty;
    titleLabel_->setText(item.title());
    auto apply = [](Button& button, const std::shared_ptr<BarButtonItem>& barItem) {
        button.setHidden(!barItem);
        button.setTitle(barItem ? std::optional<std::string>(barItem->title()) : std::nullopt);
        button.titleLabel()->setFont(Font::systemFont(
            17, barItem && barItem->style() == BarButtonItemStyle::done ? FontWeight::semibold
                                                                        : FontWeight::regular));
        button.setEnabled(!barItem || barItem->isEnabled());
        button.setTintColor(barItem ? barItem->tintColor() : std::nullopt);
    };
    apply(*leftButton_, item.leftBarButtonItem());
    apply(*rightButton_, item.rightBarButtonItem());
    setNeedsLayout();
}

void NavigationBar::layoutSubviews() {
    Size size = bounds().size;
    // The buttons keep clear of what covers the bar's sides (a landscape phone's notch).
    const EdgeInsets safe = safeAreaInsets();
    const double leading = 16 + safe.left;
    const double trailing = 16 + safe.right;
    Size left = leftButton_->intrinsicContentSize();
    Size right = rightButton_->intrinsicContentSize();
    leftButton_->setFrame({leading, 0, left.width, size.height});
    rightButton_->setFrame({size.width - trailing - right.width, 0, right.width, size.height});
    double side = std::max(left.width + leading, right.width + trailing) + 16;
    titleLabel_->setFrame({side, 0, std::max(0.0, size.width - 2 * side), size.height});
}

}  // namespace ovix::kit
