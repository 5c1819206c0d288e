#include "ovix/kit/CollectionViewCell.h"

namespace ovix::kit {

std::shared_ptr<CollectionViewCell> CollectionViewCell::create(Rect frame, std::string reuseIdentifier) {
    auto cell = std::make_shared<CollectionViewCell>(frame, std::move(reuseIdentifier));
    cell->setUpCell();
    return cell;
}

CollectionViewCell::CollectionViewCell(Rect frame, std::string reuseIdentifier)
    : View(frame), reuseIdentifier_(std::move(reuseIdentifier)), contentView_(View::create()) {}

void CollectionViewCell::setUpCell() {
    if (contentView_->superview()) {
        return;
    }
    contentView_->setFrame(bounds());
    contentView_->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    addSubview(contentView_);
}

}  // namespace ovix::kit
