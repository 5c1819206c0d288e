#pragma once

#include <memory>
#include <string>

#include "ovix/kit/CollectionViewCell.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"

namespace ovix {

/// A tile of the overlay's home grid: a rounded dark cell with a 30-point icon on the left and a
/// white title beside it, both centred vertically. The home tab writes the icon's image and the
/// title's text directly. Main thread only.
class TabCell : public kit::CollectionViewCell {
  public:
    static constexpr const char* reuseIdentifier = "TabCell";
    static constexpr double iconSide = 30;
    static constexpr double cornerRadius = 8;

    static std::shared_ptr<TabCell> create(kit::Rect frame = {}, std::string reuseIdentifier = {});
    TabCell(kit::Rect frame, std::string reuseIdentifier);

    const std::shared_ptr<kit::ImageView>& iconImageView() const { return iconImageView_; }
    const std::shared_ptr<kit::Label>& titleLabel() const { return titleLabel_; }

    std::string className() const override { return "TabCell"; }

  private:
    void setupLayout();

    std::shared_ptr<kit::ImageView> iconImageView_;
    std::shared_ptr<kit::Label> titleLabel_;
};

}  // namespace ovix
