#pragma once

#include <memory>
#include <string>

#include "ovix/kit/Label.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

enum class TableViewCellStyle { defaultStyle, value1, value2, subtitle };
enum class TableViewCellAccessoryType {
    none,
    disclosureIndicator,
    detailDisclosureButton,
    checkmark,
    detailButton
};
enum class TableViewCellSelectionStyle { none, blue, gray, defaultStyle };

/// A table row. Put content in `contentView` (it fills the cell, less the accessory's width); the
/// default style shows `textLabel`. Subclasses build their content in `create` after construction.
class TableViewCell : public View {
  public:
    static constexpr double accessoryWidth = 40;

    static std::shared_ptr<TableViewCell> create(TableViewCellStyle style = TableViewCellStyle::defaultStyle,
                                                 std::string reuseIdentifier = {});
    TableViewCell(TableViewCellStyle style, std::string reuseIdentifier);

    TableViewCellStyle style() const { return style_; }
    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    /// The default style's label (made on first use).
    std::shared_ptr<Label> textLabel();
    TableViewCellAccessoryType accessoryType() const { return accessory_; }
    void setAccessoryType(TableViewCellAccessoryType type);
    TableViewCellSelectionStyle selectionStyle() const { return selectionStyle_; }
    void setSelectionStyle(TableViewCellSelectionStyle style) { selectionStyle_ = style; }
    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected) { selected_ = selected; }
    /// Called before the table hands the cell out again.
    virtual void prepareForReuse() {}

    void layoutSubviews() override;
    std::string className() const override { return "TableViewCell"; }

  protected:
    /// Adds the content view; `create` functions call it once the cell is shared.
    void setUpCell();

  private:
    TableViewCellStyle style_;
    std::string reuseIdentifier_;
    std::shared_ptr<View> contentView_;
    std::shared_ptr<Label> textLabel_;
    TableViewCellAccessoryType accessory_ = TableViewCellAccessoryType::none;
    TableViewCellSelectionStyle selectionStyle_ = TableViewCellSelectionStyle::defaultStyle;
    bool selected_ = false;
};

}  // namespace ovix::kit
