#include "ovix/kit/TableViewCell.h"

namespace ovix::kit {

std::shared_ptr<TableViewCell> TableViewCell::create(TableViewCellStyle style, std::string reuseIdentifier) {
    auto cell = std::make_shared<TableViewCell>(style, std::move(reuseIdentifier));
    cell->setUpCell();
    return cell;
}

TableViewCell::TableViewCell(TableViewCellStyle style, std::string reuseIdentifier)
    : View(Rect{0, 0, 320, 44}),
      style_(style),
      reuseIdentifier_(std::move(reuseIdentifier)),
      contentView_(View::create()) {
    setBackgroundColor(Color::white());
}

void TableViewCell::setUpCell() {
    if (contentView_->superview()) {
        return;
    }
    contentView_->setFrame(bounds());
    contentView_->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    addSubview(contentView_);
}

std::shared_ptr<Label> TableViewCell::textLabel() {
    if (!textLabel_) {
        textLabel_ = Label::create();
        contentView_->addSubview(textLabel_);
        setNeedsLayout();
    }
    return textLabel_;
}

void TableViewCell::setAccessoryType(TableViewCellAccessoryType type) {
    if (type != accessory_) {
        accessory_ = type;
        setNeedsLayout();
    }
}

void TableViewCell::layoutSubviews() {
    Rect b = bounds();
    double accessory = accessory_ == TableViewCellAccessoryType::none ? 0 : accessoryWidth;
    contentView_->setFrame({0, 0, std::max(0.0, b.size.width - accessory), b.size.height});
    if (textLabel_) {
        Rect c = contentView_->bounds();
        textLabel_->setFrame({16, 0, std::max(0.0, c.size.width - 32), c.size.height});
    }
}

}  // namespace ovix::kit
