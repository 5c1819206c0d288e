#include "ui/overlay/UILabelContent.h"

namespace ovix {

std::shared_ptr<UILabelContent> UILabelContent::create(std::string text) {
    auto view = std::make_shared<UILabelContent>();
    view->setupLayout(std::move(text));
    return view;
}

UILabelContent::UILabelContent() : kit::View(kit::Rect{}), label_(kit::Label::create()) {}

void UILabelContent::setupLayout(std::string text) {
    label_->setText(std::move(text));
    label_->setTextColor(kit::Color::white());
    label_->setFont(kit::Font::systemFont(fontSize));
    label_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(label_);
    kit::LayoutConstraint::activate({
        label_->centerXAnchor().constraintEqualTo(centerXAnchor()),
        label_->centerYAnchor().constraintEqualTo(centerYAnchor()),
    });
}

}  // namespace ovix
