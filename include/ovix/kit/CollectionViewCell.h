#pragma once

#include <memory>
#include <string>

#include "ovix/kit/View.h"

namespace ovix::kit {

/// An item of a collection view. Put content in `contentView` (it fills the cell).
/// Subclasses build their content in `create` after construction.
class CollectionViewCell : public View {
  public:
    static std::shared_ptr<CollectionViewCell> create(Rect frame = {}, std::string reuseIdentifier = {});
    CollectionViewCell(Rect frame, std::string reuseIdentifier);

    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected) { selected_ = selected; }
    virtual void prepareForReuse() {}

    std::string className() const override { return "CollectionViewCell"; }

  protected:
    /// Adds the content view; `create` functions call it once the cell is shared.
    void setUpCell();

  private:
    std::string reuseIdentifier_;
    std::shared_ptr<View> contentView_;
    bool selected_ = false;
};

}  // namespace ovix::kit
