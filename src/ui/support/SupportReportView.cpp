#include "ui/support/SupportReportView.h"

#include "ovix/kit/TapGestureRecognizer.h"

namespace ovix {

namespace {

constexpr double fieldFontSize = 15;
constexpr double fieldCornerRadius = 8;
constexpr double descriptionFontSize = 16;
constexpr double descriptionCornerRadius = 6;
constexpr double titleFontSize = 28;
constexpr double attachTitleFontSize = 14;
constexpr double attachSpacing = 8;
constexpr double attachMargin = 12;
constexpr double buttonFontSize = 16;
constexpr double buttonCornerRadius = 8;
constexpr double buttonRowSpacing = 12;

}  // namespace

std::shared_ptr<SupportReportView> SupportReportView::create(kit::Rect frame) {
    auto view = std::make_shared<SupportReportView>(frame);
    // Constraints, the delegate links and the control actions refer to the view weakly: build the
    // tree once the view is owned.
    view->setUpPage();
    return view;
}

SupportReportView::SupportReportView(kit::Rect frame)
    : kit::View(frame),
      scrollView_(kit::ScrollView::create()),
      container_(kit::StackView::create()),
      lblTitle_(kit::Label::create("Hỗ trợ")),
      txtTypeFalse_(makeField("--Chọn loại lỗi--")),
      txtTitle_(makeField("Tiêu đề")),
      txtServer_(makeField("Server")),
      txtName_(makeField("Tên nhân vật")),
      txtDescription_(kit::TextView::create()),
      attachContainer_(kit::StackView::create()),
      attachTitle_(kit::Label::create("Gửi ảnh đính kèm")),
      attachScroll_(kit::ScrollView::create()),
      attachImages_(kit::StackView::create()),
      btnSend_(makeButton("Gửi Hỗ trợ", kit::Color::systemRed())),
      btnClose_(makeButton("Đóng", kit::Color::darkGray())) {
    setBackgroundColor(kit::Color::white());
}

std::shared_ptr<kit::TextField> SupportReportView::makeField(std::string placeholder) {
    auto field = kit::TextField::create();
    field->setPlaceholder(std::move(placeholder));
    field->setFont(kit::Font::systemFont(fieldFontSize));
    field->layer().setBorderWidth(1);
    field->layer().setBorderColor(kit::Color::lightGray());
    field->layer().setCornerRadius(fieldCornerRadius);
    field->layer().setMasksToBounds(true);
    // A blank left view insets the text from the rounded border.
    field->setLeftView(kit::View::create({0, 0, fieldTextInset, fieldHeight}));
    field->setLeftViewMode(kit::TextFieldViewMode::always);
    // The caret is hidden on purpose: the form looks the same whether or not a field has focus.
    field->setTintColor(kit::Color::clear());
    field->heightAnchor().constraintEqualToConstant(fieldHeight)->setActive(true);
    return field;
}

std::shared_ptr<kit::Button> SupportReportView::makeButton(std::string title, kit::Color background) {
    auto button = kit::Button::create(kit::ButtonType::system);
    button->setTitle(std::move(title));
    button->setBackgroundColor(background);
    button->setTintColor(kit::Color::white());
    button->layer().setCornerRadius(buttonCornerRadius);
    button->titleLabel()->setFont(kit::Font::boldSystemFont(buttonFontSize));
    button->heightAnchor().constraintEqualToConstant(buttonHeight)->setActive(true);
    return button;
}

void SupportReportView::setUpPage() {
    scrollView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(scrollView_);
    auto content = kit::View::create();
    content->setTranslatesAutoresizingMaskIntoConstraints(false);
    scrollView_->addSubview(content);
    auto& contentGuide = scrollView_->contentLayoutGuide();
    kit::LayoutConstraint::activate({
        // Between the status bar and the home indicator: the form is shown over the full screen, and
        // a page shorter than the screen would otherwise put its title under the notch.
        scrollView_->topAnchor().constraintEqualTo(safeAreaLayoutGuide().topAnchor()),
        scrollView_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        scrollView_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        scrollView_->bottomAnchor().constraintEqualTo(safeAreaLayoutGuide().bottomAnchor()),
        content->topAnchor().constraintEqualTo(contentGuide.topAnchor()),
        content->leadingAnchor().constraintEqualTo(contentGuide.leadingAnchor()),
        content->trailingAnchor().constraintEqualTo(contentGuide.trailingAnchor()),
        content->bottomAnchor().constraintEqualTo(contentGuide.bottomAnchor()),
        // As wide as the visible frame: the page scrolls vertically only.
        content->widthAnchor().constraintEqualTo(scrollView_->frameLayoutGuide().widthAnchor()),
    });
    setUpColumn(content);
}

void SupportReportView::setUpColumn(const std::shared_ptr<kit::View>& content) {
    container_->setAxis(kit::LayoutAxis::vertical);
    container_->setSpacing(columnSpacing);
    container_->setTranslatesAutoresizingMaskIntoConstraints(false);
    content->addSubview(container_);
    kit::LayoutConstraint::activate({
        container_->topAnchor().constraintEqualTo(content->topAnchor(), columnTop),
        container_->centerXAnchor().constraintEqualTo(content->centerXAnchor()),
        container_->leadingAnchor().constraintGreaterThanOrEqualTo(content->leadingAnchor(),
                                                                   columnSideMargin),
        container_->trailingAnchor().constraintLessThanOrEqualTo(content->trailingAnchor(),
                                                                 -columnSideMargin),
        container_->bottomAnchor().constraintEqualTo(content->bottomAnchor()),
        container_->widthAnchor().constraintLessThanOrEqualToConstant(columnMaxWidth),
        container_->widthAnchor().constraintGreaterThanOrEqualToConstant(columnMinWidth),
    });

    lblTitle_->setFont(kit::Font::boldSystemFont(titleFontSize));
    lblTitle_->setTextColor(kit::Color::black());
    setUpFields();
    setUpDescription();
    setUpAttachments();
    for (const auto& view : std::initializer_list<std::shared_ptr<kit::View>>{
             lblTitle_, txtTypeFalse_, txtTitle_, txtServer_, txtName_, txtDescription_, attachContainer_}) {
        container_->addArrangedSubview(view);
    }
    container_->addArrangedSubview(makeButtonRow());
}

void SupportReportView::setUpFields() {
    const std::weak_ptr<SupportReportView> weak = self<SupportReportView>();
    for (const auto& field : {txtTypeFalse_, txtTitle_, txtServer_, txtName_}) {
        // The outline follows the editing events themselves, whoever is the field's delegate.
        field->addTarget(
            [weak](kit::Control& sender) {
                if (auto view = weak.lock()) {
                    view->textFieldDidBeginEditing(static_cast<kit::TextField&>(sender));
                }
            },
            kit::ControlEvent::editingDidBegin);
        field->addTarget(
            [weak](kit::Control& sender) {
                if (auto view = weak.lock()) {
                    view->textFieldDidEndEditing(static_cast<kit::TextField&>(sender));
                }
            },
            kit::ControlEvent::editingDidEnd);
    }
}

void SupportReportView::setUpDescription() {
    txtDescription_->layer().setBorderColor(kit::Color::gray());
    txtDescription_->layer().setBorderWidth(1);
    txtDescription_->layer().setCornerRadius(descriptionCornerRadius);
    txtDescription_->setFont(kit::Font::systemFont(descriptionFontSize));
    txtDescription_->setText(std::string(descriptionPlaceholder));
    txtDescription_->setTextColor(kit::Color::lightGray());
    // Grows with its text instead of scrolling inside the page.
    txtDescription_->setScrollEnabled(false);
    txtDescription_->setDelegate(self<SupportReportView>());
    txtDescription_->heightAnchor()
        .constraintGreaterThanOrEqualToConstant(descriptionMinHeight)
        ->setActive(true);
}

void SupportReportView::setUpAttachments() {
    attachContainer_->setAxis(kit::LayoutAxis::vertical);
    attachContainer_->setSpacing(attachSpacing);
    attachContainer_->setLayoutMargins({attachMargin, attachMargin, attachMargin, attachMargin});
    attachContainer_->setLayoutMarginsRelativeArrangement(true);
    attachContainer_->layer().setBorderWidth(1);
    attachContainer_->layer().setBorderColor(kit::Color::lightGray());
    attachContainer_->layer().setCornerRadius(fieldCornerRadius);
    attachContainer_->setClipsToBounds(true);

    attachTitle_->setFont(kit::Font::boldSystemFont(attachTitleFontSize));
    attachScroll_->setShowsHorizontalScrollIndicator(false);
    attachScroll_->heightAnchor().constraintEqualToConstant(attachStripHeight)->setActive(true);
    attachImages_->setAxis(kit::LayoutAxis::horizontal);
    attachImages_->setSpacing(attachSpacing);
    // The strip is taller than its 100-point thumbnails: they sit at its top rather than being
    // stretched against their own height.
    attachImages_->setAlignment(kit::StackViewAlignment::leading);
    attachImages_->setTranslatesAutoresizingMaskIntoConstraints(false);
    attachScroll_->addSubview(attachImages_);
    auto& strip = attachScroll_->contentLayoutGuide();
    kit::LayoutConstraint::activate({
        attachImages_->topAnchor().constraintEqualTo(strip.topAnchor()),
        attachImages_->leadingAnchor().constraintEqualTo(strip.leadingAnchor()),
        attachImages_->trailingAnchor().constraintEqualTo(strip.trailingAnchor()),
        attachImages_->bottomAnchor().constraintEqualTo(strip.bottomAnchor()),
        attachImages_->heightAnchor().constraintEqualTo(attachScroll_->heightAnchor()),
    });
    attachContainer_->addArrangedSubview(attachTitle_);
    attachContainer_->addArrangedSubview(attachScroll_);

    // Anywhere on the section (title, strip, around the thumbnails) opens the picker; the
    // thumbnails' delete buttons keep their own taps.
    attachContainer_->setUserInteractionEnabled(true);
    const std::weak_ptr<SupportReportView> weak = self<SupportReportView>();
    attachContainer_->addGestureRecognizer(
        kit::TapGestureRecognizer::create([weak](kit::TapGestureRecognizer&) {
            if (auto view = weak.lock()) {
                view->handleAttachTap();
            }
        }));
}

std::shared_ptr<kit::StackView> SupportReportView::makeButtonRow() {
    const std::weak_ptr<SupportReportView> weak = self<SupportReportView>();
    btnSend_->addTarget(
        [weak] {
            if (auto view = weak.lock()) {
                view->sendReport();
            }
        },
        kit::ControlEvent::touchUpInside);
    btnClose_->addTarget(
        [weak] {
            if (auto view = weak.lock()) {
                view->closeTapped();
            }
        },
        kit::ControlEvent::touchUpInside);
    auto row = kit::StackView::create({btnSend_, btnClose_});
    row->setAxis(kit::LayoutAxis::horizontal);
    row->setSpacing(buttonRowSpacing);
    row->setDistribution(kit::StackViewDistribution::fillEqually);
    return row;
}

void SupportReportView::closeTapped() {
    if (onClose) {
        onClose();
    }
}

void SupportReportView::handleAttachTap() {
    if (onAttachTapped) {
        onAttachTapped();
    }
}

void SupportReportView::sendReport() {
    if (onSendReport) {
        onSendReport();
    }
}

void SupportReportView::textFieldDidBeginEditing(kit::TextField& textField) {
    textField.layer().setBorderColor(kit::Color::systemBlue());
}

void SupportReportView::textFieldDidEndEditing(kit::TextField& textField) {
    textField.layer().setBorderColor(kit::Color::lightGray());
}

void SupportReportView::textViewDidBeginEditing(kit::TextView& textView) {
    if (textView.text() == descriptionPlaceholder && textView.textColor() == kit::Color::lightGray()) {
        textView.setText({});
        textView.setTextColor(kit::Color::black());
    }
}

void SupportReportView::textViewDidEndEditing(kit::TextView& textView) {
    if (textView.text().empty()) {
        textView.setText(std::string(descriptionPlaceholder));
        textView.setTextColor(kit::Color::lightGray());
    }
}

}  // namespace ovix
