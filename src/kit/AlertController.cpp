#include "ovix/kit/AlertController.h"

#include <algorithm>

#include "ovix/kit/Screen.h"

namespace ovix::kit {

namespace {

constexpr double kPadding = 16;
constexpr double kButtonHeight = 44;

}  // namespace

std::shared_ptr<AlertController> AlertController::create(std::optional<std::string> title,
                                                         std::optional<std::string> message,
                                                         AlertControllerStyle preferredStyle) {
    return std::make_shared<AlertController>(std::move(title), std::move(message), preferredStyle);
}

AlertController::AlertController(std::optional<std::string> title, std::optional<std::string> message,
                                 AlertControllerStyle preferredStyle)
    : alertTitle_(std::move(title)), message_(std::move(message)), style_(preferredStyle) {
    setTitle(alertTitle_.value_or(""));
    setModalPresentationStyle(ModalPresentationStyle::overFullScreen);
    setModalTransitionStyle(ModalTransitionStyle::crossDissolve);
}

void AlertController::addAction(std::shared_ptr<AlertAction> action) {
    if (!action) {
        return;
    }
    actions_.push_back(std::move(action));
    if (isViewLoaded()) {
        rebuild();
    }
}

std::shared_ptr<Button> AlertController::buttonForAction(std::size_t index) {
    loadViewIfNeeded();
    return index < buttons_.size() ? buttons_[index] : nullptr;
}

std::shared_ptr<View> AlertController::cardView() {
    loadViewIfNeeded();
    return card_;
}

void AlertController::loadView() {
    auto backdrop = View::create(Screen::main()->bounds());
    backdrop->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    backdrop->setBackgroundColor(Color::black().withAlphaComponent(0.2));
    setView(backdrop);
    card_ = View::create();
    card_->setBackgroundColor(Color::white(0.97, 1));
    card_->layer().setCornerRadius(14);
    card_->setClipsToBounds(true);
    titleLabel_ = Label::create(alertTitle_.value_or(""));
    titleLabel_->setFont(Font::systemFont(17, FontWeight::semibold));
    titleLabel_->setTextAlignment(TextAlignment::center);
    titleLabel_->setNumberOfLines(0);
    messageLabel_ = Label::create(message_.value_or(""));
    messageLabel_->setFont(Font::systemFont(13));
    messageLabel_->setTextAlignment(TextAlignment::center);
    messageLabel_->setNumberOfLines(0);
    card_->addSubview(titleLabel_);
    card_->addSubview(messageLabel_);
    backdrop->addSubview(card_);
    rebuild();
}

void AlertController::rebuild() {
    for (auto& button : buttons_) {
        button->removeFromSuperview();
    }
    buttons_.clear();
    // Cancel goes last, the others keep their order.
    std::vector<std::size_t> order(actions_.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::stable_partition(order.begin(), order.end(),
                          [&](std::size_t i) { return actions_[i]->style() != AlertActionStyle::cancel; });
    buttons_.resize(actions_.size());
    std::weak_ptr<AlertController> weak = self<AlertController>();
    for (std::size_t i : order) {
        const auto& action = actions_[i];
        auto button = Button::create(ButtonType::system);
        button->setTitle(action->title());
        button->titleLabel()->setFont(Font::systemFont(
            17, action->style() == AlertActionStyle::cancel ? FontWeight::semibold : FontWeight::regular));
        if (action->style() == AlertActionStyle::destructive) {
            button->setTitleColor(Color::systemRed());
        }
        button->setEnabled(action->isEnabled());
        button->addTarget(
            [weak, i] {
                if (auto alert = weak.lock()) {
                    alert->actionTapped(i);
                }
            },
            ControlEvent::touchUpInside);
        card_->addSubview(button);
        buttons_[i] = button;
    }

    // Frames: texts wrap inside the card; buttons side by side for two alert actions.
    double inner = cardWidth - 2 * kPadding;
    double y = kPadding + 4;
    auto placeText = [&](Label& label) {
        if (label.text().empty()) {
            label.setFrame({kPadding, y, inner, 0});
            return;
        }
        Size s = label.sizeThatFits({inner, 0});
        label.setFrame({kPadding, y, inner, s.height});
        y += s.height + 4;
    };
    placeText(*titleLabel_);
    placeText(*messageLabel_);
    y += kPadding - 4;
    bool sideBySide = style_ == AlertControllerStyle::alert && buttons_.size() == 2;
    if (sideBySide) {
        buttons_[order[0]]->setFrame({0, y, cardWidth / 2, kButtonHeight});
        buttons_[order[1]]->setFrame({cardWidth / 2, y, cardWidth / 2, kButtonHeight});
        y += kButtonHeight;
    } else {
        for (std::size_t i : order) {
            buttons_[i]->setFrame({0, y, cardWidth, kButtonHeight});
            y += kButtonHeight;
        }
    }
    Rect bounds = view()->bounds();
    double x = (bounds.size.width - cardWidth) / 2;
    double top =
        style_ == AlertControllerStyle::alert ? (bounds.size.height - y) / 2 : bounds.size.height - y - 34;
    card_->setFrame({x, top, cardWidth, y});
    card_->setAutoresizingMask(
        style_ == AlertControllerStyle::alert
            ? AutoresizingMask::flexibleLeftMargin | AutoresizingMask::flexibleRightMargin |
                  AutoresizingMask::flexibleTopMargin | AutoresizingMask::flexibleBottomMargin
            : AutoresizingMask::flexibleLeftMargin | AutoresizingMask::flexibleRightMargin |
                  AutoresizingMask::flexibleTopMargin);
}

void AlertController::actionTapped(std::size_t index) {
    if (index >= actions_.size() || !actions_[index]->isEnabled()) {
        return;
    }
    auto action = actions_[index];
    dismiss(true, [action] { action->invoke(); });
}

}  // namespace ovix::kit
