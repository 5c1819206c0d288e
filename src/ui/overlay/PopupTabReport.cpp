#include "ui/overlay/PopupTabReport.h"

#include "ovix/kit/Application.h"
#include "ovix/kit/Image.h"
#include "ovix/kit/host/Application.h"

namespace ovix {

std::shared_ptr<PopupTabReport> PopupTabReport::create(kit::Rect frame) {
    auto tab = std::make_shared<PopupTabReport>(frame);
    // The button's action refers back to the tab weakly: build once it is owned.
    tab->setupLayout();
    return tab;
}

PopupTabReport::PopupTabReport(kit::Rect frame)
    : kit::View(frame),
      titleLabel_(makeLabel(titleText, kit::Font::boldSystemFont(20), kit::Color::white())),
      divider_(makeDivider()),
      hotlineBox_(kit::View::create()),
      phoneIcon_(kit::ImageView::create(kit::Image::systemNamed("phone.fill"))),
      hotlineLabel_(makeLabel(hotlineText, kit::Font::boldSystemFont(16), kit::Color::gray())),
      messageLabel_(
          makeLabel(messageText, kit::Font::systemFont(14, kit::FontWeight::bold), kit::Color::white())),
      buttonHolder_(kit::View::create()),
      reportButton_(kit::Button::create(kit::ButtonType::system)),
      hiddenDivider_(makeDivider()) {}

std::shared_ptr<kit::Label> PopupTabReport::makeLabel(const char* text, kit::Font font, kit::Color color) {
    auto label = kit::Label::create(text);
    label->setFont(font);
    label->setTextColor(color);
    label->setTranslatesAutoresizingMaskIntoConstraints(false);
    return label;
}

std::shared_ptr<kit::View> PopupTabReport::makeDivider() {
    auto divider = kit::View::create();
    divider->setBackgroundColor(kit::Color::white().withAlphaComponent(0.5));
    return divider;
}

void PopupTabReport::setupLayout() {
    setBackgroundColor(kit::Color::black());
    titleLabel_->setTextAlignment(kit::TextAlignment::center);
    addSubview(titleLabel_);
    divider_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(divider_);

    setupHotlineBox();
    messageLabel_->setNumberOfLines(0);
    messageLabel_->setTextAlignment(kit::TextAlignment::center);
    setupButton();

    contentStack_ = kit::StackView::create({hotlineBox_, messageLabel_, kit::View::create(), buttonHolder_});
    contentStack_->setAxis(kit::LayoutAxis::vertical);
    contentStack_->setSpacing(spacing);
    contentStack_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(contentStack_);

    // The holder is the stack's last view, so its safe-area pin and the stack's bottom pin cannot
    // both hold. Activated first, the holder's pin is the one kept: the button stays clear of the
    // home indicator instead of hanging off the bottom of the sheet.
    kit::LayoutConstraint::activate({
        buttonHolder_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        buttonHolder_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        buttonHolder_->bottomAnchor().constraintEqualTo(safeAreaLayoutGuide().bottomAnchor(), -spacing),
        buttonHolder_->heightAnchor().constraintEqualToConstant(holderHeight),
        titleLabel_->topAnchor().constraintEqualTo(topAnchor()),
        titleLabel_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        titleLabel_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        titleLabel_->heightAnchor().constraintEqualToConstant(titleHeight),
        divider_->topAnchor().constraintEqualTo(titleLabel_->bottomAnchor()),
        divider_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        divider_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        divider_->heightAnchor().constraintEqualToConstant(1),
        contentStack_->topAnchor().constraintEqualTo(divider_->bottomAnchor()),
        contentStack_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        contentStack_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        contentStack_->bottomAnchor().constraintEqualTo(bottomAnchor()),
    });

    // Kept without constraints: it has no size and never shows.
    addSubview(hiddenDivider_);
}

void PopupTabReport::setupHotlineBox() {
    hotlineBox_->setBackgroundColor(kit::Color::white(0.5, 0.1));
    phoneIcon_->setTintColor(kit::Color::gray());
    phoneIcon_->setTranslatesAutoresizingMaskIntoConstraints(false);
    hotlineLabel_->setUserInteractionEnabled(true);

    auto row = kit::StackView::create({phoneIcon_, hotlineLabel_});
    row->setAxis(kit::LayoutAxis::horizontal);
    row->setAlignment(kit::StackViewAlignment::center);
    row->setSpacing(8);
    row->setTranslatesAutoresizingMaskIntoConstraints(false);
    hotlineBox_->addSubview(row);
    kit::LayoutConstraint::activate({
        hotlineBox_->heightAnchor().constraintEqualToConstant(hotlineBoxHeight),
        row->centerXAnchor().constraintEqualTo(hotlineBox_->centerXAnchor()),
        row->centerYAnchor().constraintEqualTo(hotlineBox_->centerYAnchor()),
        phoneIcon_->widthAnchor().constraintEqualToConstant(phoneIconSide),
        phoneIcon_->heightAnchor().constraintEqualToConstant(phoneIconSide),
    });
}

void PopupTabReport::setupButton() {
    reportButton_->setTitle(std::string(buttonTitle));
    reportButton_->setTitleColor(kit::Color::white());
    reportButton_->setBackgroundColor(buttonColor);
    reportButton_->layer().setCornerRadius(8);
    reportButton_->titleLabel()->setFont(kit::Font::boldSystemFont(16));
    std::weak_ptr<PopupTabReport> weak = self<PopupTabReport>();
    reportButton_->addTarget(
        [weak] {
            if (auto tab = weak.lock()) {
                tab->reportTapped();
            }
        },
        kit::ControlEvent::touchUpInside);
    reportButton_->setTranslatesAutoresizingMaskIntoConstraints(false);
    buttonHolder_->addSubview(reportButton_);
    kit::LayoutConstraint::activate({
        reportButton_->centerXAnchor().constraintEqualTo(buttonHolder_->centerXAnchor()),
        reportButton_->centerYAnchor().constraintEqualTo(buttonHolder_->centerYAnchor()),
        reportButton_->widthAnchor().constraintEqualToConstant(buttonSize.width),
        reportButton_->heightAnchor().constraintEqualToConstant(buttonSize.height),
    });
}

void PopupTabReport::reportTapped() {
    if (onReport) {
        onReport();
    }
}

void PopupTabReport::didTapHotline() {
    auto& application = kit::Application::shared();
    if (application.canOpen(dialUrl)) {
        (void)application.open(dialUrl);
    }
}

}  // namespace ovix
