#include "ui/overlay/AccountPopup.h"

#include <array>
#include <utility>

#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/Screen.h"

namespace ovix {
namespace {

constexpr kit::Color redAccent = kit::Color::rgb255(211, 47, 47);

// Row title and dictionary key, in display order.
constexpr std::array<std::pair<const char*, const char*>, 3> rows{{
    {"Tên tài khoản", "Username"},
    {"Email", "Email"},
    {"Số điện thoại", "PhoneNumber"},
}};

std::shared_ptr<kit::Label> makeLabel(std::string text, kit::Color color, kit::Font font) {
    auto label = kit::Label::create(std::move(text));
    label->setTextColor(color);
    label->setFont(font);
    return label;
}

}  // namespace

std::shared_ptr<AccountPopup> AccountPopup::create(kit::Rect frame) {
    auto popup = std::make_shared<AccountPopup>(frame);
    popup->buildFrame();
    popup->buildContent({});
    std::weak_ptr<AccountPopup> weak = popup;
    // Tied to the popup: the observer goes with it, so it never needs removing.
    kit::NotificationCenter::defaultCenter().addObserver(
        std::string(kit::deviceOrientationDidChangeNotification), weak, [weak] {
            if (auto strong = weak.lock()) {
                strong->updateCloseButtons();
            }
        });
    return popup;
}

AccountPopup::AccountPopup(kit::Rect frame)
    : kit::View(frame),
      scrollView_(kit::ScrollView::create()),
      container_(kit::View::create()),
      closeButtonBottom_(kit::Button::create(kit::ButtonType::system)),
      closeButtonTop_(kit::Button::create(kit::ButtonType::system)) {}

// The parts that survive a rebuild: background, scroll view, card and the round close button.
void AccountPopup::buildFrame() {
    setBackgroundColor(kit::Color::black());
    scrollView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(scrollView_);

    container_->setBackgroundColor(kit::Color::white().withAlphaComponent(0.05));
    container_->layer().setCornerRadius(12);
    container_->setTranslatesAutoresizingMaskIntoConstraints(false);
    scrollView_->addSubview(container_);

    std::weak_ptr<AccountPopup> weak = self<AccountPopup>();
    auto close = [weak] {
        if (auto strong = weak.lock()) {
            strong->closeTapped();
        }
    };
    closeButtonBottom_->setTitle("Đóng");
    closeButtonBottom_->setTitleColor(kit::Color::white());
    closeButtonBottom_->setBackgroundColor(redAccent);
    closeButtonBottom_->layer().setCornerRadius(8);
    closeButtonBottom_->setTranslatesAutoresizingMaskIntoConstraints(false);
    closeButtonBottom_->addTarget(close, kit::ControlEvent::touchUpInside);

    closeButtonTop_->setImage(kit::Image::systemNamed("xmark.circle.fill"));
    closeButtonTop_->setTintColor(redAccent);
    closeButtonTop_->setTranslatesAutoresizingMaskIntoConstraints(false);
    closeButtonTop_->addTarget(close, kit::ControlEvent::touchUpInside);
    addSubview(closeButtonTop_);

    auto& safe = safeAreaLayoutGuide();
    topRightConstraint_ = closeButtonTop_->topAnchor().constraintEqualTo(safe.topAnchor(), 16);
    kit::LayoutConstraint::activate({
        scrollView_->topAnchor().constraintEqualTo(safe.topAnchor()),
        scrollView_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        scrollView_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        scrollView_->bottomAnchor().constraintEqualTo(safe.bottomAnchor()),
        // Pinned to the popup, not to the scroll content: the card never scrolls.
        container_->topAnchor().constraintEqualTo(safe.topAnchor(), 16),
        container_->leadingAnchor().constraintEqualTo(leadingAnchor(), 16),
        container_->trailingAnchor().constraintEqualTo(trailingAnchor(), -16),
        container_->bottomAnchor().constraintEqualTo(safe.bottomAnchor(), -16),
        topRightConstraint_,
        closeButtonTop_->trailingAnchor().constraintEqualTo(trailingAnchor(), -16),
        closeButtonTop_->widthAnchor().constraintEqualToConstant(30),
        closeButtonTop_->heightAnchor().constraintEqualToConstant(30),
    });
}

void AccountPopup::updateInfo(const Dictionary& userInfo) {
    // Copy first: removing a subview deactivates its constraints and changes the list.
    const auto old = container_->subviews();
    for (const auto& view : old) {
        view->removeFromSuperview();
    }
    buildContent(userInfo);
}

void AccountPopup::buildContent(const Dictionary& userInfo) {
    contentStack_ = kit::StackView::create();
    contentStack_->setAxis(kit::LayoutAxis::vertical);
    contentStack_->setSpacing(10);
    contentStack_->setTranslatesAutoresizingMaskIntoConstraints(false);
    container_->addSubview(contentStack_);

    contentStack_->addArrangedSubview(
        makeLabel("Tài khoản", kit::Color::white(), kit::Font::boldSystemFont(22)));
    for (const auto& [title, key] : rows) {
        auto found = userInfo.find(key);
        contentStack_->addArrangedSubview(
            makeInfoRow(title, found == userInfo.end() ? nullptr : &found->second));
    }

    container_->addSubview(closeButtonBottom_);
    bottomConstraint_ = closeButtonBottom_->bottomAnchor().constraintEqualTo(container_->bottomAnchor(), -16);
    kit::LayoutConstraint::activate({
        contentStack_->topAnchor().constraintEqualTo(container_->topAnchor(), 20),
        contentStack_->leadingAnchor().constraintEqualTo(container_->leadingAnchor(), 16),
        contentStack_->trailingAnchor().constraintEqualTo(container_->trailingAnchor(), -16),
        bottomConstraint_,
        closeButtonBottom_->leadingAnchor().constraintEqualTo(container_->leadingAnchor(), 16),
        closeButtonBottom_->trailingAnchor().constraintEqualTo(container_->trailingAnchor(), -16),
        closeButtonBottom_->heightAnchor().constraintEqualToConstant(40),
        contentStack_->bottomAnchor().constraintLessThanOrEqualTo(closeButtonBottom_->topAnchor(), -20),
    });
    updateCloseButtons();
}

std::shared_ptr<kit::StackView> AccountPopup::makeInfoRow(const std::string& title, const Value* value) {
    // Only a non-empty string counts; a number, a null or "" is "not set".
    const std::string* text = value ? value->asString() : nullptr;
    const bool set = text && !text->empty();

    auto valueLabel = set ? makeLabel(*text, kit::Color::white(), kit::Font::systemFont(16))
                          : makeLabel(notSetText, kit::Color::gray(), kit::Font::systemFont(16));
    auto mark =
        kit::ImageView::create(kit::Image::systemNamed(set ? "checkmark.seal.fill" : "xmark.seal.fill"));
    mark->setTintColor(set ? kit::Color::systemGreen() : kit::Color::systemRed());
    mark->setTranslatesAutoresizingMaskIntoConstraints(false);
    kit::LayoutConstraint::activate({
        mark->widthAnchor().constraintEqualToConstant(20),
        mark->heightAnchor().constraintEqualToConstant(20),
    });

    auto valueLine = kit::StackView::create({valueLabel, mark});
    valueLine->setAxis(kit::LayoutAxis::horizontal);
    valueLine->setAlignment(kit::StackViewAlignment::center);
    valueLine->setSpacing(8);

    auto row = kit::StackView::create(
        {makeLabel(title, kit::Color::lightGray(), kit::Font::systemFont(14)), valueLine});
    row->setAxis(kit::LayoutAxis::vertical);
    row->setSpacing(4);
    return row;
}

void AccountPopup::updateCloseButtons() {
    const kit::Rect screen = kit::Screen::main()->bounds();
    const bool landscape = screen.size.height < screen.size.width;
    closeButtonBottom_->setHidden(landscape);
    closeButtonTop_->setHidden(!landscape);
}

void AccountPopup::closeTapped() {
    if (onClose) {
        onClose();
    }
}

}  // namespace ovix
