#include "ui/overlay/TabCell.h"

namespace ovix {

std::shared_ptr<TabCell> TabCell::create(kit::Rect frame, std::string reuseIdentifier) {
    auto cell = std::make_shared<TabCell>(frame, std::move(reuseIdentifier));
    cell->setUpCell();
    cell->setupLayout();
    return cell;
}

TabCell::TabCell(kit::Rect frame, std::string reuseIdentifier)
    : kit::CollectionViewCell(frame, std::move(reuseIdentifier)),
      iconImageView_(kit::ImageView::create()),
      titleLabel_(kit::Label::create()) {}

void TabCell::setupLayout() {
    setBackgroundColor(kit::Color::darkGray());
    layer().setCornerRadius(cornerRadius);
    setClipsToBounds(true);
    const auto& content = contentView();
    content->setBackgroundColor(kit::Color::rgb255(128, 128, 128, 0.1));

    iconImageView_->setContentMode(kit::ContentMode::scaleAspectFit);
    iconImageView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    content->addSubview(iconImageView_);
    titleLabel_->setFont(kit::Font::systemFont(14));
    titleLabel_->setTextColor(kit::Color::white());
    titleLabel_->setTranslatesAutoresizingMaskIntoConstraints(false);
    content->addSubview(titleLabel_);

    kit::LayoutConstraint::activate({
        iconImageView_->leadingAnchor().constraintEqualTo(content->leadingAnchor(), 8),
        iconImageView_->centerYAnchor().constraintEqualTo(content->centerYAnchor()),
        iconImageView_->widthAnchor().constraintEqualToConstant(iconSide),
        iconImageView_->heightAnchor().constraintEqualToConstant(iconSide),
        titleLabel_->leadingAnchor().constraintEqualTo(iconImageView_->trailingAnchor(), 6),
        titleLabel_->centerYAnchor().constraintEqualTo(content->centerYAnchor()),
        titleLabel_->trailingAnchor().constraintEqualTo(content->trailingAnchor(), -8),
    });
}

}  // namespace ovix
