#include "ui/overlay/PopupTabHome.h"

#include <cmath>
#include <string>

#include "ovix/kit/Image.h"
#include "ovix/platform/Platform.h"
#include "ui/overlay/TabCell.h"

namespace ovix {

std::shared_ptr<PopupTabHome> PopupTabHome::create(kit::Rect frame) {
    auto tab = std::make_shared<PopupTabHome>(frame);
    // The grid holds its data source weakly: wire it once the tab is owned.
    tab->setupLayout();
    return tab;
}

PopupTabHome::PopupTabHome(kit::Rect frame) : kit::View(frame), titleLabel_(kit::Label::create("Menu")) {
    auto layout = kit::CollectionViewFlowLayout::create();
    layout->scrollDirection = kit::ScrollDirection::vertical;
    layout->minimumLineSpacing = spacing;
    layout->minimumInteritemSpacing = spacing;
    layout->sectionInset = {spacing, spacing, spacing, spacing};
    collectionView_ = kit::CollectionView::create({}, layout);
}

kit::Size PopupTabHome::tileSize(double width) {
    const double insets = 2 * spacing;
    // Deliberately unclamped: below one column the width is not finite.
    const double columns = std::floor((width - insets + spacing) / (minWidth + spacing));
    return {(width - insets - (columns - 1) * spacing) / columns, tileHeight};
}

void PopupTabHome::setupLayout() {
    setBackgroundColor(kit::Color::black());

    titleLabel_->setTextColor(kit::Color::white());
    titleLabel_->setFont(kit::Font::boldSystemFont(20));
    titleLabel_->setTextAlignment(kit::TextAlignment::center);
    titleLabel_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(titleLabel_);

    auto separator = kit::View::create();
    separator->setBackgroundColor(kit::Color::white().withAlphaComponent(0.3));
    separator->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(separator);

    collectionView_->setBackgroundColor(kit::Color::clear());
    collectionView_->registerCell<TabCell>(TabCell::reuseIdentifier);
    collectionView_->setDataSource(self<PopupTabHome>());
    collectionView_->setDelegate(self<PopupTabHome>());
    collectionView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(collectionView_);

    kit::LayoutConstraint::activate({
        titleLabel_->topAnchor().constraintEqualTo(topAnchor()),
        titleLabel_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        titleLabel_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        titleLabel_->heightAnchor().constraintEqualToConstant(titleHeight),
        separator->topAnchor().constraintEqualTo(titleLabel_->bottomAnchor()),
        separator->leadingAnchor().constraintEqualTo(leadingAnchor()),
        separator->trailingAnchor().constraintEqualTo(trailingAnchor()),
        separator->heightAnchor().constraintEqualToConstant(1),
        collectionView_->topAnchor().constraintEqualTo(separator->bottomAnchor(), spacing),
        collectionView_->leadingAnchor().constraintEqualTo(leadingAnchor(), spacing),
        collectionView_->trailingAnchor().constraintEqualTo(trailingAnchor(), -spacing),
        collectionView_->bottomAnchor().constraintEqualTo(bottomAnchor(), -spacing),
    });
    collectionView_->reloadData();
}

int PopupTabHome::numberOfItemsInSection(kit::CollectionView&, int) {
    return static_cast<int>(tabs.size());
}

std::shared_ptr<kit::CollectionViewCell> PopupTabHome::cellForItemAt(kit::CollectionView& collectionView,
                                                                     const kit::IndexPath& indexPath) {
    auto dequeued = collectionView.dequeueReusableCell(TabCell::reuseIdentifier, indexPath);
    auto cell = std::dynamic_pointer_cast<TabCell>(dequeued);
    if (!cell) {
        return kit::CollectionViewCell::create();
    }
    const Tab& tab = tabs.at(static_cast<std::size_t>(indexPath.item()));
    cell->iconImageView()->setImage(kit::Image::named(tab.icon));
    cell->titleLabel()->setText(tab.title);
    return cell;
}

std::optional<kit::Size> PopupTabHome::sizeForItemAt(kit::CollectionView& collectionView,
                                                     kit::CollectionViewFlowLayout&, const kit::IndexPath&) {
    return tileSize(collectionView.bounds().width());
}

void PopupTabHome::didSelectItemAt(kit::CollectionView&, const kit::IndexPath& indexPath) {
    const Tab& tab = tabs.at(static_cast<std::size_t>(indexPath.item()));
    if (std::string_view(tab.title) == accountTitle) {
        if (onSelectAccount) {
            onSelectAccount();
        }
        return;
    }
    platform::current()->console->printLine(std::string("Selected tab: ") + tab.title);
}

}  // namespace ovix
